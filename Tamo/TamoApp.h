#pragma once

#include <QObject>
#include <QStringList>
#include <QTranslator>

#include <memory>

class DocumentWindow;

/// The running program: what it was started with, and its windows.
class TamoApp : public QObject {
    Q_OBJECT

public:
    /// Sets up the application object for Tamo: its name, language and translations.
    TamoApp();

    /// Does what the command line asks for, and runs until the last window closes. Answers the exit code.
    int run(const QStringList& arguments);

    /// Opens the file in a window of its own. On failure answers null and the reason goes to the user.
    DocumentWindow* open(const QString& path);
    DocumentWindow* openUntitled();

private:
    int runWith(const QStringList& files, const QString& picture);
    DocumentWindow* show(std::unique_ptr<DocumentWindow> window);
    void chooseAndOpen(DocumentWindow* from);
    int openAll(const QStringList& files);
    void takePicture(DocumentWindow* window, const QString& path);

    QTranslator m_translator;
    DocumentWindow* m_first = nullptr;
    bool m_isBatch = false; ///< Failures go to the error stream, since nobody is there to read a box.
};
