#include "DocumentWindow.h"

#include "DocumentOutlineView.h"
#include "EncodingName.h"
#include "TextNavigation.h"

#include <QApplication>
#include <QCloseEvent>
#include <QFileDialog>
#include <QFileInfo>
#include <QLabel>
#include <QListView>
#include <QMenuBar>
#include <QMessageBox>
#include <QSplitter>
#include <QStatusBar>

namespace {

constexpr QSize initialSize(1280, 820);
constexpr QList<int>::value_type outlineWidth = 320;
constexpr QList<int>::value_type problemsHeight = 130;
constexpr std::size_t mostUnderlines = 200; ///< In one line.

QString count(std::size_t number, const QString& one, const QString& many) {
    return QStringLiteral("%1 %2").arg(number).arg(number == 1 ? one : many);
}

QString summary(const DiagnosticList& diagnostics) {
    const std::size_t errors = diagnostics.errorCount();
    const std::size_t warnings = diagnostics.size() - errors;
    QStringList parts;
    if (errors != 0) {
        parts += count(errors, QStringLiteral("error"), QStringLiteral("errores"));
    }
    if (warnings != 0) {
        parts += count(warnings, QStringLiteral("advertencia"), QStringLiteral("advertencias"));
    }
    return parts.isEmpty() ? QStringLiteral("Sin errores") : parts.join(QStringLiteral(", "));
}

/// `title` for a menu, where a single ampersand would mark a letter.
QString menuText(QString title) { return title.replace(u'&', QStringLiteral("&&")); }

/// The kinds of file, as a file dialog lists them.
QString saveFilters() {
    QStringList filters;
    for (const ContentType& type : XMLFileDocument::contentTypes()) {
        filters += QStringLiteral("%1 (*.%2)").arg(type.name, type.fileSuffixes.join(QStringLiteral(" *.")));
    }
    filters += QStringLiteral("Todos los archivos (*)");
    return filters.join(QStringLiteral(";;"));
}

void showError(QWidget* parent, const QString& text) {
    QMessageBox box(QMessageBox::Warning, QStringLiteral("Tamo"), text, QMessageBox::Ok, parent);
    box.setTextFormat(Qt::PlainText);
    box.exec();
}

} // namespace

DocumentWindow::DocumentWindow(std::unique_ptr<XMLFileDocument> document, const QString& path)
    : m_document(std::move(document)), m_path(path), m_session(m_document->buffer(), encodingName()) {
    setAttribute(Qt::WA_DeleteOnClose);
    resize(initialSize);
    m_session.buffer().setUndoManager(&m_undoManager);
    buildViews();
    buildMenus();
    buildStatusBar();
    showTitle();

    connect(&m_session, &EditorSession::treeChanged, this, &DocumentWindow::showTree);
    connect(&m_undoManager, &UndoManager::historyChanged, this, &DocumentWindow::showHistory);
    connect(&m_undoManager, &UndoManager::cleanChanged, this,
            [this](bool isClean) { setWindowModified(!isClean); });
    m_session.start();
}

DocumentWindow::~DocumentWindow() = default;

bool DocumentWindow::isPristine() const {
    return m_path.isEmpty() && !isWindowModified() && m_session.isEmptyDocument();
}

// What the window is made of

void DocumentWindow::buildViews() {
    m_outline = new DocumentOutlineView;
    connect(m_outline, &DocumentOutlineView::nodeChosen, this, &DocumentWindow::revealNode);

    m_source = new TextView;
    m_source->setAccessibleName(QStringLiteral("Texto"));
    m_source->setHistory(&m_session.buffer().history());
    m_source->setUnderlines([this](SourceRange visible) { return underlines(visible); });
    connect(m_source, &TextView::selectionChanged, this, &DocumentWindow::showCaret);

    m_problems = new QListView;
    m_problems->setAccessibleName(QStringLiteral("Problemas"));
    m_problems->setModel(&m_diagnostics);
    m_problems->setUniformItemSizes(true);
    m_problems->setFrameShape(QFrame::NoFrame);
    m_problems->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_problems->setSpacing(2);
    m_problems->hide();
    connect(m_problems, &QListView::clicked, this, &DocumentWindow::revealDiagnostic);
    connect(m_problems, &QListView::activated, this, &DocumentWindow::revealDiagnostic);
    connect(m_problems, &QListView::doubleClicked, this, &DocumentWindow::applyFix);

    auto* panes = new QSplitter(Qt::Horizontal);
    panes->setHandleWidth(1);
    panes->addWidget(m_outline);
    panes->addWidget(m_source);
    panes->setSizes({outlineWidth, initialSize.width() - outlineWidth});
    panes->setStretchFactor(1, 1);
    auto* rows = new QSplitter(Qt::Vertical);
    rows->setHandleWidth(1);
    rows->addWidget(panes);
    rows->addWidget(m_problems);
    rows->setSizes({initialSize.height() - problemsHeight, problemsHeight});
    rows->setStretchFactor(0, 1);
    setCentralWidget(rows);
    m_source->setFocus();
}

void DocumentWindow::buildMenus() {
    QMenu* file = menuBar()->addMenu(QStringLiteral("&Archivo"));
    file->addAction(QStringLiteral("&Nuevo"), QKeySequence::New, this, &DocumentWindow::newRequested);
    file->addAction(QStringLiteral("&Abrir…"), QKeySequence::Open, this, &DocumentWindow::openRequested);
    file->addSeparator();
    file->addAction(QStringLiteral("&Guardar"), QKeySequence::Save, this, &DocumentWindow::save);
    file->addAction(QStringLiteral("Guardar &como…"), QKeySequence::SaveAs, this, &DocumentWindow::saveAs);
    file->addSeparator();
    file->addAction(QStringLiteral("&Cerrar"), QKeySequence(Qt::CTRL | Qt::Key_W), this, &QWidget::close);

    QMenu* edit = menuBar()->addMenu(QStringLiteral("&Edición"));
    m_undo = edit->addAction(QString(), QKeySequence::Undo, &m_undoManager, &UndoManager::undo);
    m_redo = edit->addAction(QString(), QKeySequence::Redo, &m_undoManager, &UndoManager::redo);
    edit->addSeparator();
    edit->addAction(QStringLiteral("Cor&tar"), QKeySequence::Cut, m_source, &TextView::cut);
    edit->addAction(QStringLiteral("&Copiar"), QKeySequence::Copy, m_source, &TextView::copy);
    edit->addAction(QStringLiteral("&Pegar"), QKeySequence::Paste, m_source, &TextView::paste);
    edit->addAction(QStringLiteral("&Seleccionar todo"), QKeySequence::SelectAll, m_source,
                    &TextView::selectAll);
    showHistory();
}

void DocumentWindow::buildStatusBar() {
    m_summary = new QLabel;
    m_position = new QLabel;
    m_lineEnding = new QLabel;
    m_encoding = new QLabel(encodingName());
    for (QLabel* fact : {m_summary, m_position, m_lineEnding, m_encoding}) {
        fact->setTextFormat(Qt::PlainText);
        fact->setContentsMargins(8, 2, 8, 2);
    }
    statusBar()->addWidget(m_summary);
    statusBar()->addPermanentWidget(m_position);
    statusBar()->addPermanentWidget(m_lineEnding);
    statusBar()->addPermanentWidget(m_encoding);
    showCaret();
}

// Showing what changed

void DocumentWindow::showTree() {
    const DocumentTree& tree = m_session.tree();
    m_outline->setTree(tree);
    m_diagnostics.setTree(&tree, &m_session.lines());
    // Once there was a problem its place stays, rather than come and go while somebody types.
    m_problems->setVisible(m_problems->isVisible() || !tree.diagnostics.empty());
    m_summary->setText(summary(tree.diagnostics));
    const bool usesCRLF = TextNavigation::lineEnding(m_session.buffer().text()) == u"\r\n";
    m_lineEnding->setText(usesCRLF ? QStringLiteral("CRLF") : QStringLiteral("LF"));
    m_source->viewport()->update();
}

void DocumentWindow::showCaret() {
    const Rope& text = m_source->text();
    const std::size_t line = text.line(m_source->caret());
    const Offset column = m_source->caret() - text.lineStart(line);
    m_position->setText(QStringLiteral("Línea %1, columna %2").arg(line + 1).arg(column + 1));
}

void DocumentWindow::showHistory() {
    m_undo->setText(menuText(m_undoManager.undoMenuTitle()));
    m_undo->setEnabled(m_undoManager.canUndo());
    m_redo->setText(menuText(m_undoManager.redoMenuTitle()));
    m_redo->setEnabled(m_undoManager.canRedo());
}

void DocumentWindow::showTitle() {
    // Two marks in a row stand for one that belongs to the name.
    setWindowTitle(name().replace(QStringLiteral("[*]"), QStringLiteral("[*][*]")) +
                   QStringLiteral("[*] — Tamo"));
}

std::vector<TextView::Underline> DocumentWindow::underlines(SourceRange visible) const {
    const DiagnosticList& diagnostics = m_session.tree().diagnostics;
    const EditedSpan& edits = m_session.editsSinceParse();
    const SourceRange range = edits.then(visible);
    // The one before may reach into the range.
    std::size_t index = diagnostics.firstIndex(range.lower);
    index -= index != 0 && diagnostics.range(index - 1).upper > range.lower;
    std::vector<TextView::Underline> found;
    for (; index < diagnostics.size() && found.size() < mostUnderlines; ++index) {
        if (diagnostics.range(index).lower > range.upper) {
            break;
        }
        if (const auto now = edits.now(diagnostics.range(index))) {
            found.push_back({*now, DiagnosticsModel::color(diagnostics.severity(index))});
        }
    }
    return found;
}

// What the user does

void DocumentWindow::revealNode(NodeID node) {
    const TreeNode& chosen = m_session.tree()[node];
    if (const auto now = m_session.editsSinceParse().now(chosen.startTagRange())) {
        reveal(*now);
    }
}

void DocumentWindow::revealDiagnostic(const QModelIndex& row) {
    const auto range = m_session.tree().diagnostics.range(static_cast<std::size_t>(row.row()));
    if (const auto now = m_session.editsSinceParse().now(range)) {
        reveal(*now);
    }
}

void DocumentWindow::reveal(SourceRange range) {
    m_source->select(range);
    m_source->scrollToVisible(range);
}

void DocumentWindow::applyFix(const QModelIndex& row) {
    const auto fix = m_session.tree().diagnostics[static_cast<std::size_t>(row.row())].fix;
    if (fix && m_session.isTreeCurrent()) {
        m_session.buffer().apply(fix->edits, QString::fromStdU16String(fix->title));
        m_source->setFocus();
    }
}

// Files

QString DocumentWindow::encodingName() const {
    const QString name = localizedName(m_document->encoding());
    return m_document->bom().empty() ? name : name + QStringLiteral(" (BOM)");
}

QString DocumentWindow::name() const {
    return m_path.isEmpty() ? QStringLiteral("Sin título") : QFileInfo(m_path).fileName();
}

bool DocumentWindow::save() { return m_path.isEmpty() ? saveAs() : write(m_path); }

bool DocumentWindow::saveAs() {
    const QString proposal = m_path.isEmpty() ? QStringLiteral("Sin título.xml") : m_path;
    const QString path =
        QFileDialog::getSaveFileName(this, QStringLiteral("Guardar como"), proposal, saveFilters());
    return !path.isEmpty() && write(path);
}

bool DocumentWindow::write(const QString& path) {
    const auto written = m_document->write(m_document->snapshot(), path);
    if (!written) {
        showError(this, message(written.error(), path));
        return false;
    }
    m_path = path;
    m_undoManager.setClean();
    showTitle();
    return true;
}

void DocumentWindow::closeEvent(QCloseEvent* event) {
    if (!isWindowModified()) {
        event->accept();
        return;
    }
    QMessageBox question(QMessageBox::Question, QStringLiteral("Tamo"),
                         QStringLiteral("¿Guardar los cambios en «%1»?").arg(name()),
                         QMessageBox::Save | QMessageBox::Discard | QMessageBox::Cancel, this);
    question.setTextFormat(Qt::PlainText);
    question.setInformativeText(QStringLiteral("Si no los guarda, se perderán."));
    question.setDefaultButton(QMessageBox::Save);
    const int answer = question.exec();
    event->setAccepted(answer == QMessageBox::Discard || (answer == QMessageBox::Save && save()));
}
