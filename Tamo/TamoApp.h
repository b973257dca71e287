#pragma once

#include "AppDelegate.h"
#include "DocumentController.h"
#include "ToolkitTexts.h"

#include <QObject>
#include <QStringList>
#include <QTranslator>

#include <memory>

class ApplicationAppearance;
class QCommandLineParser;
class RecentFiles;
class RecoveryOffer;
class SessionQuestion;
class SingleInstance;
class WindowPicture;
struct Handover;

/// The running program: what it was started with, and its documents.
class TamoApp : public QObject {
    Q_OBJECT

public:
    /// Sets up the application object for Tamo: its name, language and translations.
    TamoApp();
    ~TamoApp() override;

    /// Does what the command line asks for, and runs until the last window closes. Answers the exit code.
    int run(const QStringList& arguments);

private:
    int runWith(const QCommandLineParser& options);
    bool handOver(const QStringList& files);
    void startServices();
    void takeOver(const Handover& handover);
    void showFailure(const QString& path, const QString& message);

    QTranslator m_translator;
    ToolkitTexts m_toolkitTexts;
    std::unique_ptr<ApplicationAppearance> m_appearance;
    std::unique_ptr<DocumentController> m_controller;
    std::unique_ptr<AppDelegate> m_appDelegate;
    std::unique_ptr<WindowPicture> m_picture; ///< When only a picture is wanted. Then there is nothing below.
    std::unique_ptr<SingleInstance> m_instance;
    std::unique_ptr<RecentFiles> m_recentFiles;
    std::unique_ptr<SessionQuestion> m_sessionQuestion;
    std::unique_ptr<RecoveryOffer> m_recoveryOffer;
};
