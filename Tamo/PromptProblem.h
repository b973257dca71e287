#pragma once

#include <QString>

class QLabel;
class QWidget;

/// Why a dialog does not take what was typed into its field: a line below the field, which stays as it is.
namespace PromptProblem {

/// A hidden line for it.
QLabel* makeLabel();

/// Shows `problem` in the line, gives `field` the focus and tells assistive tools; hides the line when
/// `problem` is empty.
void show(const QString& problem, QLabel& line, QWidget& field);

} // namespace PromptProblem
