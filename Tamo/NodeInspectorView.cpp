#include "NodeInspectorView.h"

#include "AttributeTableView.h"
#include "Breadcrumbs.h"
#include "CommitField.h"
#include "EditorSession.h"
#include "EmptyStateView.h"
#include "ShownText.h"
#include "Symbol.h"
#include "SystemColor.h"
#include "SystemFont.h"
#include "TagPalette.h"
#include "TextNavigation.h"
#include "TreeRowView.h"

#include <QEvent>
#include <QGridLayout>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScrollArea>
#include <QVBoxLayout>

#include <algorithm>
#include <utility>

namespace {

constexpr int margin = 16;
constexpr int sectionSpacing = 20;
constexpr int symbolSize = 20;
constexpr Offset longestSource = 16'384;
constexpr Offset longestContent = 65'536; ///< Of longer ones and longer names a field shows the start.

/// A label whose ink is a system colour, whatever the palette becomes.
class Heading : public QLabel {
public:
    explicit Heading(const QString& text) : QLabel(text) {
        setTextFormat(Qt::PlainText);
        setFont(SystemFont::semibold(SystemFont::caption()));
        setForegroundRole(QPalette::PlaceholderText);
    }
};

} // namespace

QString NodeInspectorView::title(TreeNode::Kind kind) { return Breadcrumbs::kindTitle(kind); }

QString NodeInspectorView::symbol(TreeNode::Kind kind) { return TreeRowView::icon(kind); }

NodeInspectorView::NodeInspectorView(EditorSession& session, QWidget* parent)
    : QWidget(parent), m_session(session),
      m_nothing(new EmptyStateView), m_form(new QScrollArea), m_symbol(new QLabel), m_title(new QLabel),
      m_name(new CommitField(QStringLiteral("Nombre"), CommitField::Axis::horizontal)),
      m_attributes(new AttributeTableView(session)),
      m_content(new CommitField(QStringLiteral("Texto"), CommitField::Axis::vertical)),
      m_source(new QPlainTextEdit) {
    m_nothing->setBackgroundRole(QPalette::Window);
    m_nothing->setContents(QStringLiteral("cursorarrow.click.2"), QStringLiteral("Sin selección"),
                           QStringLiteral("Selecciona un nodo para editarlo."));
    m_title->setTextFormat(Qt::PlainText);
    m_title->setFont(SystemFont::semibold(SystemFont::body()));
    m_title->setWordWrap(true);
    auto* header = new QWidget;
    auto* headerLayout = new QHBoxLayout(header);
    headerLayout->setContentsMargins(0, 0, 0, 0);
    headerLayout->setSpacing(8);
    headerLayout->addWidget(m_symbol);
    headerLayout->addWidget(m_title, 1);

    m_name->setFont(SystemFont::monospaced());
    m_name->setCommit([this](const QString& draft) { return rename(draft); });
    m_content->setCommit([this](const QString& draft) { return setContent(draft); });
    m_source->setReadOnly(true);
    m_source->setFont(SystemFont::monospaced());
    m_source->setLineWrapMode(QPlainTextEdit::WidgetWidth);
    m_source->setWordWrapMode(QTextOption::WrapAnywhere);
    m_source->setTabChangesFocus(true);
    m_source->setAccessibleName(QStringLiteral("Código fuente"));

    auto* page = new QWidget;
    auto* sections = new QVBoxLayout(page);
    sections->setContentsMargins(margin, margin, margin, margin);
    sections->setSpacing(sectionSpacing);
    sections->addWidget(header);
    m_nameSection = makeSection(QStringLiteral("Nombre"), m_name);
    m_attributeSection = makeSection(QStringLiteral("Atributos"), m_attributes);
    m_contentSection = makeSection(QStringLiteral("Contenido"), m_content);
    m_sourceSection = makeSection(QStringLiteral("Código fuente"), m_source);
    m_actionSection = makeSection(QStringLiteral("Acciones"), makeActions());
    for (QWidget* section : {m_nameSection, m_attributeSection, m_contentSection, m_actionSection}) {
        sections->addWidget(section);
    }
    sections->addWidget(m_sourceSection, 1);
    sections->addStretch();
    m_form->setWidget(page);
    m_form->setWidgetResizable(true);
    m_form->setFrameShape(QFrame::NoFrame);
    m_form->setFocusPolicy(Qt::NoFocus);
    m_form->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_nothing);
    layout->addWidget(m_form);
    connect(&session, &EditorSession::selectionChanged, this, &NodeInspectorView::showSelection);
    connect(&session, &EditorSession::treeChanged, this, &NodeInspectorView::showSelection);
    showSelection();
}

// What it is made of

QWidget* NodeInspectorView::makeSection(const QString& heading, QWidget* content) {
    auto* section = new QWidget;
    auto* layout = new QVBoxLayout(section);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(8);
    layout->addWidget(new Heading(heading));
    layout->addWidget(content);
    section->setAccessibleName(heading);
    section->setSizePolicy(QSizePolicy::Preferred,
                           content == m_source ? QSizePolicy::Expanding : QSizePolicy::Fixed);
    return section;
}

QWidget* NodeInspectorView::makeActions() {
    auto* actions = new QWidget;
    auto* grid = new QGridLayout(actions);
    grid->setContentsMargins(0, 0, 0, 0);
    grid->setSpacing(8);
    const std::array buttons = {
        makeButton(QStringLiteral("Hijo"), QStringLiteral("plus.square.on.square"), &NodeInspectorView::addChild),
        makeButton(QStringLiteral("Hermano"), QStringLiteral("plus"), &NodeInspectorView::addSibling),
        makeButton(QStringLiteral("Duplicar"), QStringLiteral("plus.square.on.square.fill"),
                   &NodeInspectorView::duplicate),
        makeButton(QStringLiteral("Envolver"), QStringLiteral("rectangle.dashed"), &NodeInspectorView::wrap),
        makeButton(QStringLiteral("Eliminar"), QStringLiteral("trash"), &NodeInspectorView::remove),
    };
    m_addChild = buttons.front();
    for (int at = 0; QPushButton* const button : buttons) {
        grid->addWidget(button, at / 2, at % 2);
        ++at;
    }
    return actions;
}

QPushButton* NodeInspectorView::makeButton(const QString& text, const QString& symbol,
                                           void (NodeInspectorView::*action)()) {
    auto* button = new QPushButton(text);
    const bool isDestructive = action == &NodeInspectorView::remove;
    button->setIcon(Symbol::icon(symbol, isDestructive ? SystemColor::systemRed : SystemColor::textColor));
    button->setAutoDefault(false);
    connect(button, &QPushButton::clicked, this, action);
    return button;
}

// What it shows

void NodeInspectorView::showSelection() {
    const auto node = m_session.selectedNode();
    m_nothing->setVisible(!node);
    m_form->setVisible(node.has_value());
    if (node) {
        showNode(*m_session.selection(), *node);
    } else {
        m_attributes->clear();
    }
}

void NodeInspectorView::showNode(const NodePath& path, NodeID node) {
    const DocumentTree& tree = m_session.tree();
    const TreeNode::Kind kind = tree[node].kind;
    if (std::exchange(m_shownSerial, m_session.selectionSerial()) != m_session.selectionSerial()) {
        // A draft that was not committed belongs to the node before.
        m_name->discardDraft();
        m_content->discardDraft();
    } else {
        m_attributes->setPath(path);
    }
    m_path = path;
    showHeader(node);

    const bool isElement = kind == TreeNode::Kind::element;
    const bool hasSource = kind == TreeNode::Kind::document || kind == TreeNode::Kind::instruction ||
                           kind == TreeNode::Kind::doctype;
    const bool hasContent = isElement ? tree.hasOnlyTextContent(node) : !hasSource;
    m_nameSection->setVisible(isElement);
    m_attributeSection->setVisible(isElement);
    m_contentSection->setVisible(hasContent);
    m_sourceSection->setVisible(hasSource);
    m_actionSection->setVisible(!hasSource);
    m_addChild->setEnabled(isElement);
    if (isElement) {
        m_name->setValue(start(tree[node].nameRange));
        m_attributes->setElement(path, node);
    } else {
        m_attributes->clear();
    }
    if (hasContent) {
        m_content->setValue(content(node));
    }
    // A text that is put in again scrolls back to its start.
    if (QString shown = hasSource ? source(node) : QString(); shown != m_shownSource) {
        m_shownSource = std::move(shown);
        m_source->setPlainText(m_shownSource);
    }
}

void NodeInspectorView::showHeader(NodeID node) {
    const DocumentTree& tree = m_session.tree();
    const TreeNode::Kind kind = tree[node].kind;
    QColor ink = color(SystemColor::secondaryLabel, palette());
    if (kind == TreeNode::Kind::element) {
        ink = TagPalette::tagColor(start(tree[node].nameRange), palette());
    }
    QPixmap picture(QSize(symbolSize, symbolSize) * devicePixelRatioF());
    picture.setDevicePixelRatio(devicePixelRatioF());
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    Symbol::draw(painter, QRectF(0, 0, symbolSize, symbolSize), symbol(kind), ink);
    painter.end();
    m_symbol->setPixmap(picture);
    m_title->setText(title(kind));
    QPalette titlePalette = palette();
    titlePalette.setColor(QPalette::WindowText,
                          kind == TreeNode::Kind::element ? ink : color(SystemColor::textColor, palette()));
    m_title->setPalette(titlePalette);
}

QString NodeInspectorView::content(NodeID node) const {
    const DocumentTree& tree = m_session.tree();
    const SourceRange range = tree[node].contentRange;
    return range.length() > longestContent
               ? start(range)
               : QString::fromStdU16String(tree.textContent(node).value_or(std::u16string()));
}

/// Enough of `range` to be seen as too long, and no more.
QString NodeInspectorView::start(SourceRange range) const {
    const Offset shown = std::min(range.length(), longestContent + 1);
    return QString::fromStdU16String(m_session.tree().text.string({range.lower, range.lower + shown}));
}

QString NodeInspectorView::source(NodeID node) const {
    const DocumentTree& tree = m_session.tree();
    return ShownText::start(tree[node].range, longestSource, tree.text);
}

void NodeInspectorView::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::PaletteChange) {
        showSelection();
    }
}

// What the user does

bool NodeInspectorView::rename(const QString& name) {
    m_session.rename(m_path, name);
    return !m_session.errorMessage();
}

bool NodeInspectorView::setContent(const QString& text) {
    QString written = text;
    // The field has lost them, and new lines are to end like those of the document.
    const bool usesCRLF = TextNavigation::lineEnding(m_session.buffer().text()) == u"\r\n";
    if (usesCRLF && text != m_content->value()) {
        written.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
        written.replace(QStringLiteral("\n"), QStringLiteral("\r\n"));
    }
    m_session.setText(m_path, written);
    return !m_session.errorMessage();
}

void NodeInspectorView::addChild() { m_session.requestNamePrompt(EditorSession::NamePrompt::Kind::addChild); }

void NodeInspectorView::addSibling() {
    m_session.requestNamePrompt(EditorSession::NamePrompt::Kind::addSibling);
}

void NodeInspectorView::duplicate() { m_session.duplicate(); }

void NodeInspectorView::wrap() { m_session.requestNamePrompt(EditorSession::NamePrompt::Kind::wrap); }

void NodeInspectorView::remove() { m_session.deleteSelection(); }
