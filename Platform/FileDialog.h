#pragma once

#include <QFileDialog>
#include <QString>
#include <QStringList>

/// Asks the user for files. A list of filters has the usual one first, such as "Notas (*.txt *.md)"; the box
/// shows what stands before the parentheses. The dialog that comes with the toolkit shows whole names.
class FileDialog : public QFileDialog {
    Q_OBJECT

public:
    /// For files to open; starts in `folder`, or in the last one where that is empty.
    static FileDialog* toOpen(const QString& folder, const QStringList& filters, QWidget* parent);

    /// For a file to write; starts with the path or the name `proposal`. A name without an extension gets the
    /// first of the chosen filter, or of the first one where the chosen has none. What has no letter, as in
    /// "v1.2", is no extension.
    static FileDialog* toSave(const QString& proposal, const QStringList& filters, QWidget* parent);

    /// Waits for the user; returns the paths, none where the user gives up. The dialog is gone then.
    QStringList choose();

    /// The first extension that `filter` lists, without the dot; empty where it lists none.
    static QString suffix(const QString& filter);

protected:
    void accept() override;

private:
    FileDialog(const QString& title, const QStringList& filters, QWidget* parent);

    void followFilter();
    void addSuffix();

    QStringList m_filters;
};
