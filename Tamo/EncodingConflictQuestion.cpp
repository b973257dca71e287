#include "EncodingConflictQuestion.h"

#include "EncodingName.h"

#include <QCoreApplication>
#include <QMessageBox>
#include <QPushButton>

namespace {

using Answer = EncodingConflictQuestion::Answer;

QString shown(const EncodingChoice& choice) { return QString::fromStdU16String(choice.name()); }

/// Whether only the mark is missing.
bool lacksMark(const EncodingConflict& conflict) { return conflict.asWritten() != conflict.choice; }

QString text(const EncodingConflict& conflict, const QString& name) {
    const QString written = localizedName(conflict.choice.encoding);
    if (lacksMark(conflict)) {
        return QStringLiteral("“%1” se guardaría en %2 sin marca de orden de bytes.").arg(name, written);
    }
    if (conflict.declared.empty()) {
        return QStringLiteral("“%1” no declara su codificación y se guardaría en %2.").arg(name, written);
    }
    return QStringLiteral("“%1” declara la codificación “%2”, pero se guardaría en %3.")
        .arg(name, QString::fromStdU16String(conflict.declared), written);
}

QString keepEncodingTitle(const EncodingConflict& conflict) {
    return lacksMark(conflict) ? QStringLiteral("Guardar con la marca")
                               : QStringLiteral("Declarar %1").arg(shown(conflict.asWritten()));
}

} // namespace

Answer EncodingConflictQuestion::ask(const EncodingConflict& conflict, const QString& name, QWidget* window) {
    QMessageBox question(QMessageBox::Warning, QCoreApplication::applicationName(), text(conflict, name),
                         QMessageBox::NoButton, window);
    question.setTextFormat(Qt::PlainText);
    question.setInformativeText(
        QStringLiteral("Al volver a abrirlo, las letras con acento y los símbolos podrían leerse mal."));
    auto* const keepEncoding = question.addButton(keepEncodingTitle(conflict), QMessageBox::AcceptRole);
    const auto declared = conflict.asDeclared();
    const bool differs = declared && declared->encoding != conflict.choice.encoding;
    const auto* const keepDeclaration =
        differs ? question.addButton(QStringLiteral("Guardar en %1").arg(shown(*declared)),
                                     QMessageBox::AcceptRole)
                : nullptr;
    const auto* const keepBoth =
        question.addButton(QStringLiteral("Guardar tal cual"), QMessageBox::DestructiveRole);
    question.addButton(QStringLiteral("Cancelar"), QMessageBox::RejectRole);
    question.setDefaultButton(keepEncoding);
    question.exec();
    if (question.clickedButton() == keepEncoding) {
        return Answer::keepEncoding;
    }
    if (keepDeclaration != nullptr && question.clickedButton() == keepDeclaration) {
        return Answer::keepDeclaration;
    }
    return question.clickedButton() == keepBoth ? Answer::keepBoth : Answer::cancel;
}
