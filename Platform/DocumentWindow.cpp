#include "DocumentWindow.h"

#include "DocumentController.h"
#include "FieldDraft.h"
#include "FieldUndo.h"
#include "FileDialog.h"
#include "FilePath.h"
#include "FolderHint.h"
#include "MemoryShortage.h"
#include "MenuText.h"
#include "NoticeBar.h"
#include "ShownName.h"
#include "TextStorage.h"
#include "UndoManager.h"
#include "WindowPlacement.h"
#include "WriteFailureQuestion.h"

#include <QAbstractButton>
#include <QApplication>
#include <QCloseEvent>
#include <QContextMenuEvent>
#include <QKeyEvent>
#include <QMenuBar>
#include <QMessageBox>
#include <QMimeData>
#include <QPushButton>
#include <QScreen>
#include <QShortcut>
#include <QVBoxLayout>

#include <chrono>
#include <utility>

namespace {

using namespace std::chrono_literals;

constexpr QSize initialSize(1280, 820);
constexpr QSize smallestSize(480, 320);
constexpr auto patience = 200ms;

} // namespace

DocumentWindow::DocumentWindow(DocumentController& controller)
    : m_controller(controller), m_frame(new QWidget), m_notices(new NoticeBar) {
    setAttribute(Qt::WA_DeleteOnClose);
    setAcceptDrops(true);
    setMinimumSize(smallestSize);
    resize(WindowPlacement::fitting(initialSize, screen()->availableGeometry()));
    auto* layout = new QVBoxLayout(m_frame);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(m_notices);
    layout->addStretch();
    setCentralWidget(m_frame);
    m_patience.setSingleShot(true);
    buildMenus();
    // The window system knows of no other key for it than that of menus, which many keyboards lack.
    connect(new QShortcut(Qt::SHIFT | Qt::Key_F10, this), &QShortcut::activated, this,
            &DocumentWindow::openContextMenu);
    connect(qApp, &QApplication::focusChanged, this, [this](QWidget*, QWidget* now) {
        if (now != nullptr && isAncestorOf(now) && !menuBar()->isAncestorOf(now) && now != menuBar()) {
            m_lastFocus = now;
        }
    });
    showTitle();
}

DocumentWindow::~DocumentWindow() {
    // Both read the document to their end.
    m_companions.clear();
    delete m_view;
}

void DocumentWindow::setDocument(std::unique_ptr<Document> document, const QString& path,
                                 const std::optional<FileIdentity>& version) {
    precondition(m_document == nullptr, "a window has one document for life");
    m_document = std::move(document);
    m_openingPath.clear();
    m_path = path;
    m_version = version;
    m_notices->dismiss();
    m_view = m_document->makeView(m_frame);
    auto* const layout = static_cast<QVBoxLayout*>(m_frame->layout());
    delete layout->takeAt(layout->count() - 1);
    layout->addWidget(m_view, 1);
    m_view->show();
    UndoManager& history = m_document->undoManager();
    connect(m_document.get(), &Document::filesDropped, &m_controller, &DocumentController::openFiles);
    connect(&history, &UndoManager::historyChanged, this, &DocumentWindow::showHistory);
    connect(&history, &UndoManager::cleanChanged, this,
            [this](bool isClean) { setWindowModified(!isClean); });
    setWindowModified(!history.isClean());
    showHistory();
    showTitle();
    emit documentChanged();
}

const DocumentType& DocumentWindow::type() const { return m_controller.type(); }

QString DocumentWindow::documentName() const {
    return ownPath().isEmpty() ? QStringLiteral("Sin título") : shownFileName(ownPath());
}

QString DocumentWindow::folderHint() const {
    QStringList others;
    for (const DocumentWindow* const window : m_controller.windows()) {
        if (window != this && !window->ownPath().isEmpty() && window->documentName() == documentName()) {
            others += window->ownPath();
        }
    }
    return ownPath().isEmpty() ? QString() : shownPath(FolderHint::of(ownPath(), others));
}

bool DocumentWindow::isPristine() const {
    return m_document != nullptr && m_path.isEmpty() && !isWindowModified() &&
           m_document->storage().text().isEmpty();
}

bool DocumentWindow::hasChangesToKeep() const {
    const bool isNothing =
        m_path.isEmpty() && m_document != nullptr && m_document->storage().text().isEmpty();
    return isWindowModified() && !isNothing;
}

void DocumentWindow::showTitle() {
    // Two marks in a row stand for one that belongs to the name.
    const auto plain = [](QString text) {
        return text.replace(QStringLiteral("[*]"), QStringLiteral("[*][*]"));
    };
    QString title = plain(documentName()) + QStringLiteral("[*] — ");
    if (const QString folder = folderHint(); !folder.isEmpty()) {
        title += plain(folder) + QStringLiteral(" — ");
    }
    setWindowTitle(title + QCoreApplication::applicationName());
    setWindowFilePath(m_path);
}

NoticeBar* DocumentWindow::addNoticeBar() {
    auto* const bar = new NoticeBar;
    static_cast<QVBoxLayout*>(m_frame->layout())->insertWidget(1, bar);
    return bar;
}

void DocumentWindow::addNotice(const QString& text) {
    NoticeBar* const bar = addNoticeBar();
    bar->tell(text);
    bar->offer(QStringLiteral("Entendido"), [bar] { bar->deleteLater(); });
}

void DocumentWindow::setVersion(const std::optional<FileIdentity>& version) {
    m_version = version;
    emit versionChanged();
}

// Menus

void DocumentWindow::buildMenus() {
    const std::array titles = {QStringLiteral("&Archivo"), QStringLiteral("&Edición"),
                               QStringLiteral("&Visualización"), QStringLiteral("Ven&tana"),
                               QStringLiteral("A&yuda")};
    for (std::size_t at = 0; at < titles.size(); ++at) {
        m_menus[at] = new QMenu(titles[at], this);
    }
    buildFileMenu();
    buildEditMenu();
    for (const Menu which : {Menu::file, Menu::edit, Menu::view}) {
        menuBar()->addMenu(&menu(which));
    }
    m_controller.type().buildMenus(*this);
    menuBar()->addMenu(&menu(Menu::window));
    menuBar()->addMenu(&menu(Menu::help));
    connect(&menu(Menu::window), &QMenu::aboutToShow, this, &DocumentWindow::listWindows);
    listWindows();
}

void DocumentWindow::buildFileMenu() {
    QMenu& file = menu(Menu::file);
    file.addAction(QStringLiteral("&Nuevo"), QKeySequence::New, &m_controller,
                   &DocumentController::newDocument);
    file.addAction(QStringLiteral("&Abrir…"), QKeySequence::Open, this,
                   [this] { m_controller.chooseAndOpen(this); });
    file.addMenu(m_controller.makeRecentMenu(this));
    file.addSeparator();
    file.addAction(QStringLiteral("&Guardar"), QKeySequence::Save, this, &DocumentWindow::save);
    file.addAction(QStringLiteral("Guardar &como…"), QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_S), this,
                   &DocumentWindow::saveAs);
    file.addAction(QStringLiteral("&Volver a lo guardado"), this, &DocumentWindow::revert);
    m_fileCommandsEnd = file.addSeparator();
    file.addAction(QStringLiteral("C&errar"), QKeySequence(Qt::CTRL | Qt::Key_W), this, &QWidget::close);
    file.addAction(QStringLiteral("&Salir"), QKeySequence(Qt::CTRL | Qt::Key_Q), &m_controller,
                   &DocumentController::quit);
}

QAction* DocumentWindow::addFileCommand(const QString& title) {
    auto* const action = new QAction(title, this);
    menu(Menu::file).insertAction(m_fileCommandsEnd, action);
    return action;
}

void DocumentWindow::buildEditMenu() {
    QMenu& edit = menu(Menu::edit);
    m_undo = edit.addAction(QString(), QKeySequence::Undo, this, [this] { toEditor("undo"); });
    m_redo = edit.addAction(QString(), QKeySequence::Redo, this, [this] { toEditor("redo"); });
    // What other desktops have for it. It stands behind their own, which menus show.
    if (const QKeySequence other(Qt::CTRL | Qt::Key_Y); !m_redo->shortcuts().contains(other)) {
        m_redo->setShortcuts(m_redo->shortcuts() << other);
    }
    edit.addSeparator();
    edit.addAction(QStringLiteral("Cor&tar"), QKeySequence::Cut, this, [this] { toEditor("cut"); });
    edit.addAction(QStringLiteral("&Copiar"), QKeySequence::Copy, this, [this] { toEditor("copy"); });
    edit.addAction(QStringLiteral("&Pegar"), QKeySequence::Paste, this, [this] { toEditor("paste"); });
    edit.addAction(QStringLiteral("&Seleccionar todo"), QKeySequence::SelectAll, this,
                   [this] { toEditor("selectAll"); });
    showHistory();
}

void DocumentWindow::showHistory() {
    if (m_document == nullptr) {
        m_undo->setText(QStringLiteral("Deshacer"));
        m_redo->setText(QStringLiteral("Rehacer"));
        m_undo->setEnabled(false);
        m_redo->setEnabled(false);
        return;
    }
    const UndoManager& history = m_document->undoManager();
    m_undo->setText(menuText(history.undoMenuTitle()));
    m_undo->setEnabled(history.canUndo());
    m_redo->setText(menuText(history.redoMenuTitle()));
    m_redo->setEnabled(history.canRedo());
}

/// Has what the user edits carry out `slot`: what has the focus, or the innermost view around it that can.
/// Undo and redo are the document's where nothing else does them.
void DocumentWindow::toEditor(const char* slot) {
    QWidget* editor = m_lastFocus;
    if (FieldUndo::isForDocument(editor, slot)) {
        editor = nullptr;
    }
    const QByteArray signature = QByteArray(slot) + "()";
    while (editor != nullptr && editor->metaObject()->indexOfSlot(signature) < 0) {
        editor = editor->isWindow() ? nullptr : editor->parentWidget();
    }
    if (editor != nullptr) {
        QMetaObject::invokeMethod(editor, slot);
    } else if (m_document != nullptr && qstrcmp(slot, "undo") == 0) {
        m_document->undoManager().undo();
    } else if (m_document != nullptr && qstrcmp(slot, "redo") == 0) {
        m_document->undoManager().redo();
    }
}

void DocumentWindow::listWindows() {
    QMenu& list = menu(Menu::window);
    list.clear();
    list.addAction(QStringLiteral("&Minimizar"), this, &QWidget::showMinimized);
    QAction* const fullScreen =
        list.addAction(QStringLiteral("&Pantalla completa"), QKeySequence(Qt::Key_F11), this,
                       [this] { setWindowState(windowState() ^ Qt::WindowFullScreen); });
    fullScreen->setCheckable(true);
    fullScreen->setChecked(isFullScreen());
    list.addSeparator();
    for (DocumentWindow* const window : m_controller.windows()) {
        QString name = window->documentName();
        if (window->isWindowModified()) {
            name += u'*'; // As in the title.
        }
        if (const QString folder = window->folderHint(); !folder.isEmpty()) {
            name += QStringLiteral(" — ") + folder;
        }
        QAction* const action =
            list.addAction(menuText(name), window, [window] { DocumentController::raise(*window); });
        action->setCheckable(true);
        action->setChecked(window == this);
    }
}

// Keys

void DocumentWindow::openContextMenu() {
    if (QWidget* const focused = focusWidget()) {
        const QPoint at = focused->inputMethodQuery(Qt::ImCursorRectangle).toRect().center();
        QContextMenuEvent event(QContextMenuEvent::Keyboard, at, focused->mapToGlobal(at));
        QApplication::sendEvent(focused, &event);
    }
}

void DocumentWindow::keyPressEvent(QKeyEvent* event) {
    auto* const button = qobject_cast<QAbstractButton*>(focusWidget());
    const bool isReturn = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    const bool isPlain = (event->modifiers() & ~Qt::KeypadModifier) == 0;
    if (button == nullptr || !isReturn || !isPlain) {
        QMainWindow::keyPressEvent(event);
    } else if (!event->isAutoRepeat()) {
        button->click();
    }
}

// Writing

/// Makes what is being written in a field of this window part of the document.
void DocumentWindow::finishEditing() { FieldDraft::commit(focusWidget()); }

void DocumentWindow::save() {
    finishEditing();
    if (m_path.isEmpty()) {
        saveAs();
    } else {
        write(m_path, Conflict::ask);
    }
}

void DocumentWindow::saveAs() {
    finishEditing();
    if (m_document == nullptr || isSaving()) {
        return;
    }
    const DocumentType& type = m_controller.type();
    const QString proposal = m_path.isEmpty() ? type.untitledFileName() : m_path;
    const QStringList chosen = FileDialog::toSave(proposal, type.saveFilters(), this)->choose();
    if (chosen.isEmpty()) {
        giveUpSaving();
    } else {
        // The dialog has asked about a file that is there.
        write(FilePath::absolute(chosen.front()), Conflict::overwrite);
    }
}

void DocumentWindow::giveUpSaving() {
    m_closesAfterSaving = false;
    emit closingRefused();
}

void DocumentWindow::write(const QString& path, Conflict conflict) {
    if (m_document == nullptr || isSaving()) {
        return;
    }
    if (!m_document->settleBeforeWriting(shownFileName(path), this)) {
        giveUpSaving();
        return;
    }
    UndoManager& history = m_document->undoManager();
    // What is typed from now on is not in the file.
    history.breakUndoCoalescing();
    m_writtenState = history.state();
    m_gate = std::make_shared<SaveGate>();
    const FileSave save{.path = path,
                        .write = m_document->write(),
                        .known = m_version,
                        .replacesAny = conflict == Conflict::overwrite,
                        .links =
                            m_links && m_links->first == path ? std::optional(m_links->second) : std::nullopt,
                        .gate = m_gate};
    m_gate->onPass = [window = QPointer<DocumentWindow>(this), gate = m_gate.get()] {
        QMetaObject::invokeMethod(
            QCoreApplication::instance(),
            [window, gate] {
                // It may be another save's by now.
                if (window != nullptr && window->m_gate.get() == gate && window->isSaving()) {
                    window->m_notices->withdrawOffers();
                }
            },
            Qt::QueuedConnection);
    };
    m_saving.start(
        [save](std::stop_token) { return save.run(); },
        [this, path, conflict](const FileSave::Result& result) { finishSaving(path, conflict, result); },
        [this, path, conflict] {
            const QString why = memoryShortage(QStringLiteral("guardar “%1”").arg(shownFileName(path)));
            finishSaving(path, conflict,
                         {.outcome = FileSave::Outcome::failed, .failure = WriteFailure(why)});
        });
    emit savingStarted();
    m_patience.disconnect();
    connect(&m_patience, &QTimer::timeout, this, [this, path, conflict] { showSaving(path, conflict); });
    m_patience.start(patience);
}

/// Says that the document is being saved, and offers to give up as long as that helps.
void DocumentWindow::showSaving(const QString& path, Conflict conflict) {
    m_notices->tell(QStringLiteral("Guardando “%1”…").arg(shownFileName(path)), true);
    if (m_gate->isOpen()) {
        m_notices->offer(QStringLiteral("Cancelar"),
                         [this, path, conflict] { cancelSaving(path, conflict); });
    }
}

/// Ends the save unless the file is being replaced already. The worker may wait for the disk much longer.
void DocumentWindow::cancelSaving(const QString& path, Conflict conflict) {
    if (!isSaving()) {
        return;
    }
    if (m_gate->cancel()) {
        m_saving.cancel();
        finishSaving(path, conflict, {.outcome = FileSave::Outcome::cancelled});
    } else {
        showSaving(path, conflict);
    }
}

void DocumentWindow::finishSaving(const QString& path, Conflict conflict, const FileSave::Result& result) {
    using Outcome = FileSave::Outcome;
    m_patience.stop();
    if (m_notices->isBusy()) {
        m_notices->dismiss();
    }
    const bool isSaved = result.outcome == Outcome::saved;
    const bool closes = std::exchange(m_closesAfterSaving, false);
    if (isSaved) {
        m_document->undoManager().setClean(m_writtenState);
    }
    const bool isWritten = isSaved || result.outcome == Outcome::unconfirmed;
    if (isWritten) {
        adoptFile(path, result.version);
    }
    emit savingEnded(isWritten);
    resolve(path, conflict, result);
    if (closes && isSaving()) {
        m_closesAfterSaving = true;
    } else if (closes && isSaved) {
        close();
    } else if (closes) {
        emit closingRefused();
    }
}

/// Asks or tells the user what came of a save. That may start another one.
void DocumentWindow::resolve(const QString& path, Conflict conflict, const FileSave::Result& result) {
    using Outcome = FileSave::Outcome;
    switch (result.outcome) {
    case Outcome::saved:
    case Outcome::cancelled:
        break;
    case Outcome::unconfirmed:
        say(QStringLiteral("“%1” se ha escrito, pero el disco no confirma que lo conservará si el equipo se "
                           "apaga de repente. Vuelve a guardarlo.")
                .arg(shownFileName(path)));
        break;
    case Outcome::changed:
    case Outcome::changedMeanwhile:
        askAboutConflict(path, result.outcome);
        break;
    case Outcome::shared:
        askAboutLinks(path, conflict);
        break;
    case Outcome::failed:
        if (wantsRemedy(*result.failure, this)) {
            m_document->applyWriteRemedy();
            write(path, conflict);
        }
        break;
    }
}

/// From now on the document is that of the file at `path`, which was just written.
void DocumentWindow::adoptFile(const QString& path, const std::optional<FileIdentity>& version) {
    const bool isElsewhere = path != m_path;
    m_path = path;
    m_version = version;
    showTitle();
    if (isElsewhere) {
        emit documentChanged();
    }
    emit saved();
}

void DocumentWindow::askAboutConflict(const QString& path, FileSave::Outcome outcome) {
    const QString fact =
        outcome == FileSave::Outcome::changedMeanwhile
            ? QStringLiteral("“%1” ha cambiado en el disco mientras se guardaba.")
        : m_version ? QStringLiteral("“%1” ha cambiado en el disco desde que se abrió.")
                    : QStringLiteral("No se sabe si “%1” ha cambiado en el disco desde que se abrió.");
    QMessageBox question(QMessageBox::Warning, QCoreApplication::applicationName(),
                         fact.arg(shownFileName(path)), QMessageBox::NoButton, this);
    question.setTextFormat(Qt::PlainText);
    question.setInformativeText(
        QStringLiteral("Si se guarda encima, se pierde lo que otro programa escribió."));
    const auto* overwrite =
        question.addButton(QStringLiteral("Guardar encima"), QMessageBox::DestructiveRole);
    const auto* elsewhere = question.addButton(QStringLiteral("Guardar como…"), QMessageBox::AcceptRole);
    question.setDefaultButton(question.addButton(QStringLiteral("Cancelar"), QMessageBox::RejectRole));
    question.exec();
    if (question.clickedButton() == overwrite) {
        write(path, Conflict::overwrite);
    } else if (question.clickedButton() == elsewhere) {
        saveAs();
    }
}

/// Other names of a file lose what it has in common with them when it is replaced: the user decides.
void DocumentWindow::askAboutLinks(const QString& path, Conflict conflict) {
    using Links = FileReplacement::Links;
    QMessageBox question(
        QMessageBox::Question, QCoreApplication::applicationName(),
        QStringLiteral("“%1” tiene más de un nombre en el disco (enlaces físicos).").arg(shownFileName(path)),
        QMessageBox::NoButton, this);
    question.setTextFormat(Qt::PlainText);
    question.setInformativeText(QStringLiteral(
        "Puedes guardar en todos, o solo en este: entonces se separa de los demás, que conservan lo que "
        "había."));
    const auto* all = question.addButton(QStringLiteral("Guardar en todos"), QMessageBox::AcceptRole);
    const auto* one = question.addButton(QStringLiteral("Guardar solo en este"), QMessageBox::AcceptRole);
    question.setDefaultButton(question.addButton(QStringLiteral("Cancelar"), QMessageBox::RejectRole));
    question.exec();
    if (question.clickedButton() == all || question.clickedButton() == one) {
        m_links = {path, question.clickedButton() == all ? Links::written : Links::separated};
        write(path, conflict);
    }
}

// Reading again

void DocumentWindow::revert() {
    if (m_path.isEmpty() || m_document == nullptr || isSaving()) {
        return;
    }
    if (isWindowModified()) {
        QMessageBox question(QMessageBox::Warning, QCoreApplication::applicationName(),
                             QStringLiteral("¿Volver a la versión guardada de “%1”?").arg(documentName()),
                             QMessageBox::NoButton, this);
        question.setTextFormat(Qt::PlainText);
        question.setInformativeText(
            QStringLiteral("Los cambios hechos desde entonces se pueden recuperar con Deshacer."));
        const auto* accept =
            question.addButton(QStringLiteral("Volver a lo guardado"), QMessageBox::AcceptRole);
        question.addButton(QStringLiteral("Cancelar"), QMessageBox::RejectRole);
        question.exec();
        if (question.clickedButton() != accept) {
            return;
        }
    }
    m_reverting.start(
        [path = m_path, &type = m_controller.type(), preparation = m_document->preparation()](
            std::stop_token stop) { return DocumentReading::of(type, path, preparation, stop); },
        [this](DocumentReading reading) {
            if (isSaving()) {
                return;
            }
            if (reading.contents) {
                takeOver(std::move(reading), QStringLiteral("Volver a lo guardado"));
            } else {
                say(reading.contents.error());
            }
        },
        [this] { say(DocumentReading::withoutMemory(m_path).contents.error()); });
}

void DocumentWindow::takeOver(DocumentReading reading, const QString& actionName) {
    m_document->replaceContents(std::move(*reading.contents), actionName);
    m_document->undoManager().setClean();
    setVersion(reading.version);
    emit saved();
}

void DocumentWindow::showOpening(const QString& path, std::function<void()> cancel) {
    m_openingPath = path;
    showTitle();
    m_notices->tell(QStringLiteral("Abriendo “%1”…").arg(shownFileName(path)), true);
    m_notices->offer(QStringLiteral("Cancelar"), std::move(cancel));
}

// Closing

DocumentWindow::Answer DocumentWindow::askAboutChanges() {
    QMessageBox question(QMessageBox::Question, QCoreApplication::applicationName(),
                         QStringLiteral("¿Guardar los cambios en “%1”?").arg(documentName()),
                         QMessageBox::Save | QMessageBox::Discard | QMessageBox::Cancel, this);
    question.setTextFormat(Qt::PlainText);
    question.setInformativeText(QStringLiteral("Si no los guardas, se perderán."));
    question.setDefaultButton(QMessageBox::Save);
    switch (question.exec()) {
    case QMessageBox::Save:
        return Answer::save;
    case QMessageBox::Discard:
        return Answer::discard;
    default:
        return Answer::cancel;
    }
}

/// Whether the document may go: asks the user where there are changes. `later` when it is to be saved before;
/// then the window closes by itself.
DocumentWindow::Closing DocumentWindow::prepareToClose() {
    if (isSaving()) {
        m_closesAfterSaving = true;
        return Closing::later;
    }
    if (!hasChangesToKeep()) {
        return Closing::now;
    }
    switch (askAboutChanges()) {
    case Answer::discard:
        return Closing::now;
    case Answer::save:
        m_closesAfterSaving = true;
        save();
        return Closing::later;
    case Answer::cancel:
        break;
    }
    return Closing::refused;
}

void DocumentWindow::closeUnasked() {
    m_closesUnasked = true;
    close();
}

void DocumentWindow::closeEvent(QCloseEvent* event) {
    finishEditing();
    const Closing closing = m_document == nullptr || m_closesUnasked ? Closing::now : prepareToClose();
    event->setAccepted(closing == Closing::now);
    if (closing == Closing::now) {
        emit aboutToClose();
    } else if (closing == Closing::refused) {
        emit closingRefused();
    }
}

// Files from elsewhere

void DocumentWindow::dragEnterEvent(QDragEnterEvent* event) {
    if (event->mimeData()->hasUrls()) {
        event->acceptProposedAction();
    }
}

void DocumentWindow::dropEvent(QDropEvent* event) {
    event->acceptProposedAction();
    // Not before whoever dropped them is told that they arrived: opening may ask something.
    QMetaObject::invokeMethod(
        &m_controller,
        [controller = &m_controller, files = event->mimeData()->urls()] { controller->openFiles(files); },
        Qt::QueuedConnection);
}

void DocumentWindow::say(const QString& text) {
    QMessageBox box(QMessageBox::Warning, QCoreApplication::applicationName(), text, QMessageBox::Ok, this);
    box.setTextFormat(Qt::PlainText);
    box.exec();
}
