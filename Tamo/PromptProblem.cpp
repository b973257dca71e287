#include "PromptProblem.h"

#include "SystemColor.h"
#include "SystemFont.h"

#include <QAccessible>
#include <QLabel>

QLabel* PromptProblem::makeLabel() {
    auto* line = new QLabel;
    line->setTextFormat(Qt::PlainText);
    line->setFont(SystemFont::callout());
    line->setWordWrap(true);
    QPalette inked = line->palette();
    inked.setColor(QPalette::WindowText, color(SystemColor::systemRed, inked));
    line->setPalette(inked);
    line->hide();
    return line;
}

void PromptProblem::show(const QString& problem, QLabel& line, QWidget& field) {
    line.setText(problem);
    line.setVisible(!problem.isEmpty());
    field.setAccessibleDescription(problem);
    if (!problem.isEmpty()) {
        field.setFocus(Qt::OtherFocusReason);
        QAccessibleEvent alert(&line, QAccessible::Alert);
        QAccessible::updateAccessibility(&alert);
    }
}
