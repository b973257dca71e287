#include "EncodingCommands.h"

#include "DocumentWindow.h"
#include "EditorDocument.h"
#include "EncodingConflictQuestion.h"
#include "FieldDraft.h"
#include "InputFile.h"
#include "LineEndings.h"
#include "MemoryShortage.h"
#include "NoticeBar.h"
#include "ReopenEncodingDialog.h"
#include "SaveEncodingDialog.h"
#include "TextNavigation.h"
#include "WriteFailureQuestion.h"
#include "XMLDeclaration.h"

#include <QApplication>
#include <QMessageBox>
#include <QPushButton>

#include <algorithm>
#include <chrono>
#include <span>
#include <utility>

namespace {

using namespace std::chrono_literals;

constexpr auto patience = 200ms;

/// Reads the start of the file at `path`, on any thread; nothing of a file that cannot be read, which shows
/// again when all of it is read.
FileStart readStart(const QString& path) {
    FileStart start;
    if (auto file = InputFile::open(path)) {
        start.bytes.resize(FileStart::longest + 1);
        start.bytes.resize(file->read(start.bytes).value_or(0));
        start.isWhole = start.bytes.size() <= FileStart::longest;
        start.bytes.resize(std::min(start.bytes.size(), FileStart::longest));
    }
    return start;
}

/// A place in a text, by its line and the units before it there.
struct Place {
    std::size_t line;
    Offset column;

    static Place of(Offset offset, const Rope& text) {
        const std::size_t line = text.line(offset);
        return {line, offset - text.lineStart(line)};
    }
    Offset offset(const Rope& text) const {
        const Offset start = text.lineStart(line);
        return std::min(start + column, TextNavigation::lineEnd(line, text));
    }
};

bool askToGiveUpChanges(DocumentWindow& window) {
    QMessageBox question(
        QMessageBox::Warning, QCoreApplication::applicationName(),
        QStringLiteral("¿Volver a abrir “%1” con otra codificación?").arg(window.documentName()),
        QMessageBox::NoButton, &window);
    question.setTextFormat(Qt::PlainText);
    question.setInformativeText(QStringLiteral("Los cambios sin guardar se pueden recuperar con Deshacer."));
    const auto* const accept = question.addButton(QStringLiteral("Volver a abrir…"), QMessageBox::AcceptRole);
    question.addButton(QStringLiteral("Cancelar"), QMessageBox::RejectRole);
    question.exec();
    return question.clickedButton() == accept;
}

/// Calls `command` on the commands of the document that `window` has then.
QAction* addCommand(DocumentWindow& window, const QString& title, void (EncodingCommands::*command)()) {
    QAction* const action = window.addFileCommand(title);
    QObject::connect(action, &QAction::triggered, &window, [&window, command] {
        const auto* const document = static_cast<EditorDocument*>(window.document());
        if (document != nullptr && document->encodingCommands() != nullptr && !window.isSaving()) {
            FieldDraft::commit(QApplication::focusWidget());
            (document->encodingCommands()->*command)();
        }
    });
    return action;
}

} // namespace

EncodingCommands::EncodingCommands(EditorDocument& document, DocumentWindow& window, QObject* parent)
    : QObject(parent), m_document(document), m_window(window) {
    m_patience.setSingleShot(true);
    connect(&document, &EditorDocument::contentsReplaced, this, &EncodingCommands::showDoubt);
    connect(&window, &DocumentWindow::savingEnded, this, [this](bool hasSucceeded) {
        if (hasSucceeded) {
            hideDoubt();
        }
    });
    // Once the document stands in its window.
    QMetaObject::invokeMethod(this, &EncodingCommands::showDoubt, Qt::QueuedConnection);
}

EncodingCommands::~EncodingCommands() = default;

void EncodingCommands::addTo(DocumentWindow& window) {
    QAction* const reopening =
        addCommand(window, QStringLiteral("Volver a a&brir con la codificación…"), &EncodingCommands::reopen);
    connect(&window, &DocumentWindow::documentChanged, reopening,
            [&window, reopening] { reopening->setEnabled(!window.path().isEmpty()); });
    addCommand(window, QStringLiteral("Guardar con &la codificación…"), &EncodingCommands::save);
}

// Reading

void EncodingCommands::reopen() {
    if (m_window.path().isEmpty() || (m_window.hasChangesToKeep() && !askToGiveUpChanges(m_window))) {
        return;
    }
    m_starting.start([path = m_window.path()](std::stop_token) { return readStart(path); },
                     [this](FileStart start) { askForReading(std::move(start)); },
                     [this] { tellUnreadable(); });
}

void EncodingCommands::askForReading(FileStart start) {
    const auto& doubt = m_document.doubt();
    const auto guess = doubt ? doubt->guess() : std::nullopt;
    const QPointer<EncodingCommands> self(this);
    ReopenEncodingDialog dialog(m_window.documentName(), std::move(start),
                                guess.value_or(m_document.file().encoding()), &m_window);
    if (dialog.exec() == QDialog::Accepted && self != nullptr) {
        readAgain(dialog.encoding());
    }
}

void EncodingCommands::readAgain(const StringEncoding& encoding) {
    showProgress(QStringLiteral("Abriendo “%1”…").arg(m_window.documentName()),
                 [this] { m_reading.cancel(); });
    m_reading.start(
        [path = m_window.path(), encoding, preparation = m_document.preparation()](std::stop_token stop) {
            const auto version = FileIdentity::of(path);
            DocumentReading reading{EditorDocument::read(path, encoding, stop),
                                    version ? std::optional(*version) : std::nullopt};
            if (reading.contents) {
                preparation(**reading.contents, stop);
            }
            return reading;
        },
        [this](DocumentReading reading) { finishReading(std::move(reading)); },
        [this] {
            hideProgress();
            tellUnreadable();
        });
}

void EncodingCommands::finishReading(DocumentReading reading) {
    hideProgress();
    if (m_window.isSaving()) {
        return;
    }
    if (reading.contents) {
        m_window.takeOver(std::move(reading), QStringLiteral("Volver a abrir con la codificación"));
    } else {
        m_window.say(reading.contents.error());
    }
}

void EncodingCommands::tellUnreadable() {
    m_window.say(DocumentReading::withoutMemory(m_window.path()).contents.error());
}

void EncodingCommands::hideDoubt() {
    if (m_doubtBar != nullptr) {
        m_doubtBar->hide();
        m_doubtBar->deleteLater();
    }
}

/// Tells what had to be assumed about the file that was read.
void EncodingCommands::showDoubt() {
    hideDoubt();
    const auto& doubt = m_document.doubt();
    if (!doubt) {
        return;
    }
    m_doubtBar = m_window.addNoticeBar();
    m_doubtBar->tell(doubt->message(m_window.documentName()));
    m_doubtBar->offer(QStringLiteral("Volver a abrir con la codificación…"), [this] { reopen(); },
                      NoticeBar::Press::leaves);
    m_doubtBar->offer(QStringLiteral("Entendido"), [] {});
}

// Writing

std::u16string EncodingCommands::textStart() const {
    const Rope& text = m_document.storage().text();
    return text.units({0, std::min(text.size(), XMLDeclaration::longest)});
}

void EncodingCommands::save() {
    const Rope text = m_document.storage().text();
    SaveEncodingDialog dialog(m_document.file().form().choice, textStart(), TextNavigation::lineEnding(text),
                              &m_window);
    const QPointer<EncodingCommands> self(this);
    if (dialog.exec() == QDialog::Accepted && self != nullptr) {
        check({dialog.choice(), dialog.lineEnding()});
    }
}

/// Finds out, off the main thread, whether the text can be written so, and gets other line ends ready.
void EncodingCommands::check(const Plan& plan) {
    showProgress(QStringLiteral("Preparando “%1”…").arg(m_window.documentName()),
                 [this] { m_checking.cancel(); });
    m_checking.start(
        [plan, text = m_document.storage().text()](const std::stop_token& stop) {
            Check check;
            if (!plan.lineEnding.empty()) {
                check.text = LineEndings::converted(text, plan.lineEnding);
            }
            check.unencodable = FileForm::unencodable(text, plan.choice.encoding, stop);
            return check;
        },
        [this, plan, generation = m_document.file().buffer().generation()](Check check) {
            finishCheck(plan, generation, std::move(check));
        },
        [this] {
            hideProgress();
            m_window.say(memoryShortage(QStringLiteral("guardar “%1”").arg(m_window.documentName())));
        });
}

void EncodingCommands::finishCheck(const Plan& plan, std::int64_t generation, Check found) {
    hideProgress();
    if (m_window.isSaving()) {
        return;
    }
    if (generation != m_document.file().buffer().generation()) {
        // Something was typed meanwhile.
        check(plan);
    } else if (found.unencodable) {
        tellUnencodable(plan, *found.unencodable);
    } else {
        carryOut(plan, found.text);
    }
}

void EncodingCommands::tellUnencodable(const Plan& plan, const UnencodableText& text) {
    const DocumentError error{DocumentError::Action::write, text};
    if (wantsRemedy({message(error, m_window.documentName()), remedyTitle(error)}, &m_window)) {
        check({EncodingChoice::usual(StringEncoding::utf8()), plan.lineEnding});
    }
}

void EncodingCommands::carryOut(const Plan& plan, const std::optional<Rope>& text) {
    UndoManager& history = m_document.undoManager();
    history.beginUndoGroup();
    if (text) {
        const TextSelection selection = m_document.textSelection();
        const Rope before = m_document.storage().text();
        const auto moved = [&](Offset offset) { return Place::of(offset, before).offset(*text); };
        m_document.file().buffer().replace(before.fullRange(), *text);
        m_document.setTextSelection(
            TextSelection::of({moved(selection.range().lower), moved(selection.range().upper)}));
    }
    change(plan.choice);
    history.endUndoGroup();
    m_window.save();
}

void EncodingCommands::change(const EncodingChoice& choice) {
    UndoManager& history = m_document.undoManager();
    const auto declaration =
        choice.declaration(textStart(), TextNavigation::lineEnding(m_document.storage().text()));
    FileForm form = m_document.file().form();
    if (!declaration && form.choice == choice) {
        return;
    }
    history.beginUndoGroup();
    form.choice = choice;
    // From now on the file says itself how it is to be read.
    form.isChosen = false;
    m_document.setForm(form);
    if (declaration) {
        m_document.file().buffer().apply(std::span(&*declaration, 1));
    }
    history.setActionName(QStringLiteral("Cambiar la codificación"));
    history.endUndoGroup();
}

bool EncodingCommands::settleConflict(const QString& name) {
    const auto conflict = EncodingConflict::of(textStart(), m_document.file().form().choice);
    if (!conflict || conflict == m_accepted) {
        return true;
    }
    switch (EncodingConflictQuestion::ask(*conflict, name, &m_window)) {
    case EncodingConflictQuestion::Answer::keepEncoding:
        change(conflict->asWritten());
        return true;
    case EncodingConflictQuestion::Answer::keepDeclaration:
        change(*conflict->asDeclared());
        return true;
    case EncodingConflictQuestion::Answer::keepBoth:
        m_accepted = conflict;
        m_document.keepEncoding();
        return true;
    case EncodingConflictQuestion::Answer::cancel:
        break;
    }
    return false;
}

// Progress

void EncodingCommands::showProgress(const QString& text, std::function<void()> cancel) {
    m_patience.disconnect();
    connect(&m_patience, &QTimer::timeout, this, [this, text, cancel = std::move(cancel)] {
        m_window.notices().tell(text, true);
        m_window.notices().offer(QStringLiteral("Cancelar"), cancel);
    });
    m_patience.start(patience);
}

void EncodingCommands::hideProgress() {
    m_patience.stop();
    if (m_window.notices().isBusy()) {
        m_window.notices().dismiss();
    }
}
