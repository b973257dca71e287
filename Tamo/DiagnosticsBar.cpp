#include "DiagnosticsBar.h"

#include "EditorSession.h"
#include "GroupedNumber.h"
#include "FixPlanner.h"
#include "MenuText.h"
#include "Symbol.h"
#include "SystemColor.h"
#include "SystemFont.h"
#include "TextNavigation.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QLocale>
#include <QMenu>
#include <QPainter>
#include <QScreen>
#include <QStyleOptionToolButton>
#include <QStylePainter>
#include <QToolButton>

#include <algorithm>

namespace {

constexpr int barHeight = 32;
constexpr int symbolSize = 14;
constexpr std::size_t mostProblems = 100; ///< In the menu.
constexpr qsizetype longestEntry = 120;   ///< Units of a message in it.
constexpr int besideEntry = 96;           ///< The symbol, the edges of the menu, and some of the window.

/// "1 byte", "999 bytes", "1,2 MB".
QString dataSize(std::uint64_t bytes) {
    return bytes < 1000
               ? counted(bytes, QStringLiteral("byte"), QStringLiteral("bytes"))
               : QLocale().formattedDataSize(static_cast<qint64>(bytes), 1, QLocale::DataSizeSIFormat);
}

/// Text from a document on one line, of a bounded length.
QString oneLine(const std::u16string& text) {
    QString shown = QString::fromStdU16String(text.substr(0, static_cast<std::size_t>(longestEntry)));
    for (QChar& unit : shown) {
        if (unit.category() == QChar::Other_Control || unit == QChar::LineSeparator ||
            unit == QChar::ParagraphSeparator) {
            unit = u' ';
        }
    }
    if (text.size() > static_cast<std::size_t>(longestEntry)) {
        shown += u'…';
    }
    return shown;
}

/// The entry of `menu` that says `text`: cut where it would be wider than the screen, and without what a menu
/// reads into it.
QString entry(const QString& text, const QMenu& menu) {
    const int room = menu.screen()->availableGeometry().width() - besideEntry;
    return menuText(menu.fontMetrics().elidedText(text, Qt::ElideRight, room));
}

/// A symbol in a system colour, asked for whenever it is painted.
class SymbolView : public QWidget {
public:
    SymbolView(const QString& name, SystemColor ink) : m_name(name), m_ink(ink) {
        setFixedSize(symbolSize, symbolSize);
        setAttribute(Qt::WA_TransparentForMouseEvents);
    }

protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        Symbol::draw(painter, QRectF(rect()), m_name, color(m_ink, palette()));
    }

private:
    const QString m_name;
    const SystemColor m_ink;
};

QLabel* makeLabel(const QString& name = {}) {
    auto* label = new QLabel;
    label->setTextFormat(Qt::PlainText);
    label->setFont(SystemFont::withMonospacedDigits(SystemFont::callout()));
    label->setObjectName(name);
    return label;
}

QLabel* makeFact(const QString& name) {
    QLabel* const label = makeLabel(name);
    label->setForegroundRole(QPalette::PlaceholderText);
    return label;
}

} // namespace

/// The button with the numbers of errors and warnings.
class DiagnosticsBar::Counts : public QToolButton {
public:
    Counts() : m_errors(makeLabel(QStringLiteral("errors"))), m_warnings(makeLabel(QStringLiteral("warnings"))) {
        setAutoRaise(true);
        setPopupMode(QToolButton::InstantPopup);
        setFocusPolicy(Qt::TabFocus);
        auto* layout = new QHBoxLayout(this);
        layout->setContentsMargins(8, 0, 8, 0);
        layout->setSpacing(4);
        layout->addWidget(
            new SymbolView(QStringLiteral("exclamationmark.circle.fill"), SystemColor::systemRed));
        layout->addWidget(m_errors);
        layout->addSpacing(6);
        layout->addWidget(
            new SymbolView(QStringLiteral("exclamationmark.triangle.fill"), SystemColor::systemOrange));
        layout->addWidget(m_warnings);
        for (QLabel* label : {m_errors, m_warnings}) {
            label->setAttribute(Qt::WA_TransparentForMouseEvents);
        }
    }

    void show(std::size_t errors, std::size_t warnings) {
        m_errors->setText(groupedNumber(errors));
        m_warnings->setText(groupedNumber(warnings));
        setAccessibleName(QStringLiteral("%1, %2").arg(
            counted(errors, QStringLiteral("error"), QStringLiteral("errores")),
            counted(warnings, QStringLiteral("advertencia"), QStringLiteral("advertencias"))));
        setToolTip(accessibleName());
        updateGeometry();
    }

    QSize sizeHint() const override { return {layout()->sizeHint().width(), barHeight - 8}; }
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent*) override {
        // The button alone: its numbers are children, and that it has a menu goes without saying.
        QStyleOptionToolButton option;
        initStyleOption(&option);
        option.features = QStyleOptionToolButton::None;
        QStylePainter(this).drawComplexControl(QStyle::CC_ToolButton, option);
    }

private:
    QLabel* m_errors;
    QLabel* m_warnings;
};

/// A text on one line, cut where the bar has no more room for it.
class DiagnosticsBar::Message : public QWidget {
public:
    Message() {
        setObjectName(QStringLiteral("message"));
        setFont(SystemFont::callout());
        setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Preferred);
    }

    void setText(const QString& text) {
        m_text = text;
        setAccessibleName(text);
        setToolTip(text);
        update();
    }

protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        painter.setPen(palette().color(QPalette::WindowText));
        painter.drawText(rect(), Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine,
                         fontMetrics().elidedText(m_text, Qt::ElideRight, width()));
    }

private:
    QString m_text;
};

DiagnosticsBar::DiagnosticsBar(EditorSession& session, QWidget* parent)
    : QWidget(parent), m_session(session), m_noErrors(new QWidget), m_counts(new Counts),
      m_menu(new QMenu(this)), m_next(new QToolButton), m_message(new Message), m_lineEnding(makeFact(QStringLiteral("lineEnding"))),
      m_encoding(makeFact(QStringLiteral("encoding"))), m_size(makeFact(QStringLiteral("size"))) {
    setFixedHeight(barHeight);
    auto* status = new QHBoxLayout(m_noErrors);
    status->setContentsMargins(8, 0, 8, 0);
    status->setSpacing(6);
    status->addWidget(new SymbolView(QStringLiteral("checkmark.circle.fill"), SystemColor::systemGreen));
    QLabel* const noErrors = makeLabel(QStringLiteral("noErrors"));
    noErrors->setText(QStringLiteral("Sin errores"));
    status->addWidget(noErrors);

    m_menu->setAccessibleName(QStringLiteral("Problemas"));
    m_counts->setMenu(m_menu);
    connect(m_menu, &QMenu::aboutToShow, this, &DiagnosticsBar::fillMenu);
    m_next->setText(QStringLiteral("Ir al problema"));
    m_next->setFont(SystemFont::callout());
    m_next->setAutoRaise(true);
    m_next->setFocusPolicy(Qt::TabFocus);
    connect(m_next, &QToolButton::clicked, &session, &EditorSession::nextProblem);

    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(8, 0, 16, 0);
    layout->setSpacing(8);
    layout->addWidget(m_noErrors);
    layout->addWidget(m_counts);
    layout->addWidget(m_next);
    layout->addWidget(m_message, 1);
    layout->setSpacing(16);
    for (QLabel* fact : {m_lineEnding, m_encoding, m_size}) {
        layout->addWidget(fact);
    }
    m_size->setToolTip(QStringLiteral("Lo que ocupa el texto en UTF-8"));
    connect(&session, &EditorSession::treeChanged, this, &DiagnosticsBar::showTree);
    connect(&session, &EditorSession::revealRequestChanged, this, &DiagnosticsBar::showProblem);
    connect(&session, &EditorSession::selectionChanged, this, &DiagnosticsBar::showProblem);
    connect(&session, &EditorSession::encodingNameChanged, this, &DiagnosticsBar::showFacts);
    showTree();
}

void DiagnosticsBar::showTree() {
    const DiagnosticList& diagnostics = m_session.tree().diagnostics;
    const std::size_t errors = diagnostics.errorCount();
    m_noErrors->setVisible(m_session.hasTree() && diagnostics.empty());
    m_counts->setVisible(!diagnostics.empty());
    m_next->setVisible(!diagnostics.empty());
    m_counts->show(errors, diagnostics.size() - errors);
    showFacts();
    showProblem();
}

/// Says what is wrong at the place that was asked for last, as going from one problem of a node to another
/// changes nothing else where only the tree shows.
void DiagnosticsBar::showProblem() {
    const DiagnosticList& problems = m_session.tree().diagnostics;
    const auto& request = m_session.revealRequest();
    QString message;
    const bool isStillThere = request && m_session.isTreeCurrent() &&
                              m_session.selectedNode() == m_session.tree().innermostNode(request->range.lower);
    if (const std::size_t at = isStillThere ? problems.firstIndex(request->range.lower) : problems.size();
        at < problems.size() && problems.range(at) == request->range) {
        message = title(at);
    }
    m_message->setText(message);
}

/// "Línea 12: " and the message of a problem.
QString DiagnosticsBar::title(std::size_t problem) const {
    const std::size_t line = m_session.lines().line(m_session.problemStarts().start(problem)) + 1;
    return QStringLiteral("Línea %1: ").arg(groupedNumber(line)) +
           oneLine(m_session.tree().diagnostics[problem].message);
}

void DiagnosticsBar::showFacts() {
    const bool usesCRLF = TextNavigation::lineEnding(m_session.buffer().text()) == u"\r\n";
    m_lineEnding->setText(usesCRLF ? QStringLiteral("CRLF") : QStringLiteral("LF"));
    m_encoding->setText(m_session.encodingName());
    m_size->setVisible(m_session.hasTree());
    m_size->setText(m_session.hasTree() ? dataSize(m_session.parsed()->byteCount) : QString());
}

void DiagnosticsBar::fillMenu() {
    m_menu->clear();
    const DiagnosticList& diagnostics = m_session.tree().diagnostics;
    const std::size_t shown = std::min(diagnostics.size(), mostProblems);
    for (std::size_t index = 0; index < shown; ++index) {
        addProblem(index);
    }
    if (shown < diagnostics.size()) {
        m_menu->addAction(QStringLiteral("y %1 más…").arg(groupedNumber(diagnostics.size() - shown)))
            ->setEnabled(false);
    }
    m_menu->addSeparator();
    m_menu->addAction(QStringLiteral("Corregir todo"), &m_session, &EditorSession::applyAllFixes);
}

void DiagnosticsBar::addProblem(std::size_t index) {
    const Diagnostic diagnostic = m_session.tree().diagnostics[index];
    const bool isError = diagnostic.severity == Diagnostic::Severity::error;
    QAction* const problem = m_menu->addAction(
        Symbol::icon(isError ? u"exclamationmark.circle.fill" : u"exclamationmark.triangle.fill",
                     isError ? SystemColor::systemRed : SystemColor::systemOrange),
        entry(title(index), *m_menu));
    // While the menu is open another tree may come.
    connect(problem, &QAction::triggered, this, [this, range = diagnostic.range, of = m_session.treeGeneration()] {
        if (m_session.treeGeneration() == of) {
            m_session.reveal(range);
        }
    });
    const std::vector<Diagnostic::Fix> fixes = FixPlanner::fixes(m_session.tree(), index);
    for (std::size_t choice = 0; choice < fixes.size(); ++choice) {
        QAction* const fix =
            m_menu->addAction(entry(QStringLiteral("    ") + oneLine(fixes[choice].title), *m_menu));
        connect(fix, &QAction::triggered, this, [this, index, choice, of = m_session.treeGeneration()] {
            if (m_session.treeGeneration() == of) {
                m_session.applyFix(index, choice);
            }
        });
    }
}
