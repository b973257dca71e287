#pragma once

#include <QMap>
#include <QObject>
#include <QString>
#include <QStringList>

class DocumentWindow;
class EditorWindowView;

/// Takes a picture of a window in a certain state, dialogs included, and ends the program.
class WindowPicture : public QObject {
    Q_OBJECT

public:
    /// `states` are pairs such as "mode=split", as `--help` lists them.
    WindowPicture(QString path, const QStringList& states, QObject* parent = nullptr);

    /// Once the window's document has been parsed. Further windows are left alone.
    void take(DocumentWindow* window);

private:
    void setUp(EditorWindowView& view);
    static void openMenu(EditorWindowView& view, const QString& name);
    void openDialog(const QString& name);
    void shoot();

    const QString m_path;
    QMap<QString, QString> m_states;
    DocumentWindow* m_window = nullptr;
};
