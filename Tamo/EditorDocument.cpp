#include "EditorDocument.h"

#include "AppCommands.h"
#include "CodeEditorView.h"
#include "CommandNotices.h"
#include "DocumentWindow.h"
#include "EditorWindowView.h"
#include "EncodingCommands.h"
#include "EncodingName.h"
#include "HelpMenu.h"
#include "KeptPlace.h"
#include "RecoveryState.h"
#include "TextDifference.h"
#include "XMLFileSuffixes.h"

#include <QMenuBar>

#include <cstdint>
#include <optional>

namespace {

/// What a file turned out to hold, on its way from a worker.
struct FileDocumentContents : DocumentContents {
    /// What turns a text into that of the file; its units share the chunks of the file's text.
    struct Difference {
        SourceRange range;
        Rope units;
    };

    QString path;
    std::unique_ptr<XMLFileDocument> file;
    std::optional<std::int64_t> preparedFor; ///< The generation of the text that `difference` is to.
    std::optional<Difference> difference;

    void compare(const Rope& before) {
        const Rope after = file->snapshot();
        const auto edit = textDifference(before, after);
        difference.reset();
        if (edit) {
            const auto length = static_cast<std::int64_t>(edit->replacement.size());
            difference = Difference{edit->range, after.part(SourceRange::at(edit->range.lower, length))};
        }
    }
};

QString encodingName(const XMLFileDocument& file) {
    const QString name = localizedName(file.encoding());
    return file.bom().empty() ? name : name + QStringLiteral(" (BOM)");
}

QString allFilesFilter() { return QStringLiteral("Todos los archivos (*)"); }

/// "XML (*.xml *.xsd)".
QString filter(const QString& name, const QStringList& suffixes) {
    return QStringLiteral("%1 (*.%2)").arg(name, suffixes.join(QStringLiteral(" *.")));
}

} // namespace

EditorDocument::EditorDocument(std::unique_ptr<XMLFileDocument> file)
    : m_file(std::move(file)), m_doubt(m_file->doubt()),
      m_session(std::make_unique<EditorSession>(m_file->buffer(), encodingName(*m_file))) {
    m_file->buffer().setUndoManager(&m_undoManager);
    m_file->forgetInitialText();
}

EditorDocument::~EditorDocument() {
    delete m_view;
    m_file->buffer().setUndoManager(nullptr);
}

TextStorage& EditorDocument::storage() { return m_file->buffer().storage(); }

QWidget* EditorDocument::makeView(QWidget* parent) {
    m_view = new EditorWindowView(*m_session, m_undoManager, parent);
    connect(&m_view->codeEditor().textView(), &TextView::selectionChanged, this,
            &EditorDocument::textSelectionChanged);
    if (auto* const window = qobject_cast<DocumentWindow*>(parent->window())) {
        window->menu(DocumentWindow::Menu::edit).addSeparator();
        window->menu(DocumentWindow::Menu::edit).addActions(m_view->findCommands());
        m_encodingCommands = new EncodingCommands(*this, *window, m_view);
        new CommandNotices(*m_session, m_undoManager, *window, m_view);
    }
    connect(&m_view->codeEditor().textView(), &TextView::filesDropped, this, &EditorDocument::filesDropped);
    return m_view;
}

Document::Write EditorDocument::write() const {
    return [form = m_file->form(), snapshot = m_file->snapshot()](
               const QString& path, const FileReplacement& how) -> std::expected<void, WriteFailure> {
        if (const auto written = form.write(snapshot, path, how); !written) {
            return std::unexpected(
                WriteFailure(message(written.error(), path), remedyTitle(written.error())));
        }
        return {};
    };
}

Document::Preparation EditorDocument::preparation() const {
    // What the user chose holds when the file is read again.
    const auto chosen = m_file->form().isChosen ? std::optional(m_file->encoding()) : std::nullopt;
    return [text = m_file->snapshot(), generation = m_file->buffer().generation(),
            chosen](DocumentContents& contents, const std::stop_token& stop) {
        auto& other = static_cast<FileDocumentContents&>(contents);
        if (chosen && !other.file->form().isChosen) {
            if (auto again = XMLFileDocument::read(other.path, *chosen, stop)) {
                other.file = std::move(*again);
            }
        }
        other.compare(text);
        other.preparedFor = generation;
    };
}

void EditorDocument::replaceContents(std::unique_ptr<DocumentContents> contents, const QString& actionName) {
    auto& other = static_cast<FileDocumentContents&>(*contents);
    if (other.preparedFor != m_file->buffer().generation()) {
        other.compare(m_file->snapshot());
    }
    if (!other.difference && other.file->form().choice == m_file->form().choice) {
        takeForm(other.file->form());
    } else {
        m_undoManager.beginUndoGroup();
        setForm(other.file->form());
        if (other.difference) {
            replaceText(other.difference->range, other.difference->units);
        }
        m_undoManager.setActionName(actionName);
        m_undoManager.endUndoGroup();
    }
    m_doubt = other.file->doubt();
    emit contentsReplaced();
}

EncodingCommands* EditorDocument::encodingCommands() const { return m_encodingCommands; }

void EditorDocument::setForm(const FileForm& form) {
    m_undoManager.registerUndo([this, before = m_file->form()] { setForm(before); });
    takeForm(form);
}

void EditorDocument::keepEncoding() {
    FileForm form = m_file->form();
    form.isChosen = true;
    takeForm(form);
}

void EditorDocument::takeForm(const FileForm& form) {
    m_file->setForm(form);
    m_file->forgetInitialText();
    m_session->setEncodingName(encodingName(*m_file));
    emit recoveryFactsChanged();
}

bool EditorDocument::settleBeforeWriting(const QString& name, QWidget*) {
    return m_encodingCommands == nullptr || m_encodingCommands->settleConflict(name);
}

void EditorDocument::applyWriteRemedy() {
    if (m_encodingCommands != nullptr) {
        m_encodingCommands->change(EncodingChoice::usual(StringEncoding::utf8()));
    }
}

std::expected<std::unique_ptr<DocumentContents>, QString>
EditorDocument::read(const QString& path, const std::optional<StringEncoding>& encoding,
                     const std::stop_token& stop) {
    auto file = encoding ? XMLFileDocument::read(path, *encoding, stop) : XMLFileDocument::read(path, stop);
    if (!file) {
        return std::unexpected(message(file.error(), path));
    }
    auto contents = std::make_unique<FileDocumentContents>();
    contents->path = path;
    contents->file = std::move(*file);
    return contents;
}

/// Puts `units` in the place of `replaced`. What is selected within it keeps its place as far as that is
/// known, and comes into view; anything else moves along.
void EditorDocument::replaceText(SourceRange replaced, const Rope& units) {
    TextBuffer& buffer = m_file->buffer();
    const TextSelection selection = buffer.selection();
    const auto kept = [&](Offset at) { return keptPlace(at, buffer.text(), replaced, units); };
    const auto isWithin = [&](Offset at) { return replaced.lower < at && at < replaced.upper; };
    std::optional<TextSelection> place;
    if (isWithin(selection.anchor) || isWithin(selection.caret)) {
        place = {kept(selection.anchor), kept(selection.caret)};
    }
    buffer.replace(replaced, units, {}, place);
}

RecoveryFacts EditorDocument::recoveryFacts() const {
    RecoveryFacts facts;
    facts.encoding = m_file->encoding().converterName();
    facts.bom.assign(m_file->bom().begin(), m_file->bom().end());
    return facts;
}

TextSelection EditorDocument::textSelection() const { return TextSelection::of(m_session->textSelection()); }

void EditorDocument::setTextSelection(TextSelection selection) {
    if (m_view != nullptr) {
        m_view->codeEditor().select(selection.range());
    }
}

// The kind

std::unique_ptr<Document> EditorDocumentType::makeUntitled() const {
    return std::make_unique<EditorDocument>(std::make_unique<XMLFileDocument>());
}

std::expected<std::unique_ptr<DocumentContents>, QString>
EditorDocumentType::read(const QString& path, std::stop_token stop) const {
    return EditorDocument::read(path, std::nullopt, stop);
}

std::unique_ptr<Document> EditorDocumentType::makeDocument(std::unique_ptr<DocumentContents> contents) const {
    return std::make_unique<EditorDocument>(std::move(static_cast<FileDocumentContents&>(*contents).file));
}

std::unique_ptr<Document> EditorDocumentType::makeDocument(const RecoveredText& recovered) const {
    auto file = std::make_unique<XMLFileDocument>();
    file->setEncoding(StringEncoding::named(recovered.facts.encoding).value_or(StringEncoding::utf8()),
                      recovered.facts.bom);
    // Before there is a session, which takes the text as that of its start.
    file->buffer().storage().replaceCharacters({}, recovered.text);
    auto document = std::make_unique<EditorDocument>(std::move(file));
    document->undoManager().resetClean();
    return document;
}

QStringList EditorDocumentType::openFilters() const {
    return {filter(QStringLiteral("Documentos XML"), XMLFileSuffixes::all()), allFilesFilter()};
}

QStringList EditorDocumentType::saveFilters() const {
    QStringList filters;
    for (const ContentType& type : XMLFileDocument::contentTypes()) {
        const bool isAnyXML = type.fileSuffixes.contains(XMLFileSuffixes::all().front());
        filters += filter(type.name, isAnyXML ? XMLFileSuffixes::all() : type.fileSuffixes);
    }
    return filters << allFilesFilter();
}

QString EditorDocumentType::untitledFileName() const { return QStringLiteral("Sin título.xml"); }

void EditorDocumentType::buildMenus(DocumentWindow& window) const {
    AppCommands::addModes(window.menu(DocumentWindow::Menu::view));
    AppCommands::addPlaces(window.menu(DocumentWindow::Menu::view));
    window.menuBar()->addMenu(AppCommands::makeFormatMenu(&window));
    window.menuBar()->addMenu(AppCommands::makeNodeMenu(&window));
    HelpMenu::fill(window.menu(DocumentWindow::Menu::help), window);
    EncodingCommands::addTo(window);
}
