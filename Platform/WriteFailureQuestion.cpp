#include "WriteFailureQuestion.h"

#include "Document.h"

#include <QCoreApplication>
#include <QMessageBox>
#include <QPushButton>

bool wantsRemedy(const WriteFailure& failure, QWidget* window) {
    QMessageBox box(QMessageBox::Warning, QCoreApplication::applicationName(), failure.message,
                    QMessageBox::NoButton, window);
    box.setTextFormat(Qt::PlainText);
    if (failure.remedy.isEmpty()) {
        box.setStandardButtons(QMessageBox::Ok);
        box.exec();
        return false;
    }
    QPushButton* const remedy = box.addButton(failure.remedy, QMessageBox::AcceptRole);
    box.addButton(QStringLiteral("Cancelar"), QMessageBox::RejectRole);
    box.setDefaultButton(remedy);
    box.exec();
    return box.clickedButton() == remedy;
}
