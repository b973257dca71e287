#include "InsertionPrompts.h"

#include "EditorSession.h"
#include "Escaping.h"
#include "NamePromptDialog.h"
#include "TextNavigation.h"
#include "TextPromptDialog.h"

InsertionPrompts::InsertionPrompts(EditorSession& session, QWidget& over)
    : QObject(&over), m_session(session), m_over(over) {}

void InsertionPrompts::askForRoot() {
    if (!m_session.bringTreeUpToDate() || m_session.tree().rootElement()) {
        return;
    }
    auto* const dialog = new NamePromptDialog(QStringLiteral("Elemento raíz"), &m_over);
    connect(dialog, &QDialog::accepted, this, [this, dialog] {
        m_session.apply(TreeMutation::InsertElement{dialog->name().toStdU16String(), NodePath(),
                                                    TreeMutation::Placement::lastChild},
                        QStringLiteral("Crear elemento raíz"));
    });
    show(dialog);
}

void InsertionPrompts::askForText() {
    const auto path = m_session.selection();
    if (!path) {
        return;
    }
    const auto acceptsAll = [](const QString&) { return QString(); };
    auto* const dialog = new TextPromptDialog(QStringLiteral("Insertar texto"), acceptsAll, &m_over);
    connect(dialog, &QDialog::accepted, this, [this, dialog, path = *path] {
        if (!dialog->text().isEmpty() && m_session.bringTreeUpToDate()) {
            const std::u16string source = Escaping::escapeText(units(dialog->text()));
            apply(NodeAddition::text(source, path, m_session.tree(), m_session.indent()),
                  QStringLiteral("Insertar texto"));
        }
    });
    show(dialog);
}

void InsertionPrompts::askForComment() {
    const auto path = m_session.selection();
    if (!path) {
        return;
    }
    const auto check = [](const QString& text) {
        return text.contains(QStringLiteral("--")) ? NodeAddition::message(NodeAddition::DoubleHyphen())
                                                   : QString();
    };
    auto* const dialog = new TextPromptDialog(QStringLiteral("Insertar comentario"), check, &m_over);
    connect(dialog, &QDialog::accepted, this, [this, dialog, path = *path] {
        if (!dialog->text().isEmpty() && m_session.bringTreeUpToDate()) {
            apply(NodeAddition::comment(units(dialog->text()), path, m_session.tree(), m_session.indent()),
                  QStringLiteral("Insertar comentario"));
        }
    });
    show(dialog);
}

void InsertionPrompts::show(QDialog* dialog) {
    delete m_dialog;
    m_dialog = dialog;
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->open();
}

void InsertionPrompts::apply(const NodeAddition::Result& plan, const QString& actionName) {
    if (plan) {
        m_session.apply(*plan, actionName);
    } else {
        m_session.setErrorMessage(NodeAddition::message(plan.error()));
    }
}

/// `text` with the line ends of the document.
std::u16string InsertionPrompts::units(const QString& text) const {
    const std::u16string_view lineEnding = TextNavigation::lineEnding(m_session.buffer().text());
    return QString(text)
        .replace(u'\n', QString::fromStdU16String(std::u16string(lineEnding)))
        .toStdU16String();
}
