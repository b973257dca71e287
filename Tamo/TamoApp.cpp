#include "TamoApp.h"

#include "ApplicationAppearance.h"
#include "EditorDocument.h"
#include "FilePath.h"
#include "RecentFiles.h"
#include "RecoveryOffer.h"
#include "RecoveryStore.h"
#include "SessionQuestion.h"
#include "Signposter.h"
#include "SingleInstance.h"
#include "WindowPicture.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QLibraryInfo>
#include <QLocale>
#include <QMessageBox>
#include <QSaveFile>
#include <QUrl>

#include <cstdio>

namespace {

const QCommandLineOption
    screenshotOption(QStringLiteral("screenshot"),
                     QStringLiteral("Guarda una imagen de la primera ventana y termina."),
                     QStringLiteral("archivo.png"));
const QCommandLineOption stateOption(
    QStringLiteral("state"),
    QStringLiteral("Cómo está la ventana en la imagen: mode=split, select=/0/1, filter=texto, "
                   "prompt=wrap, rename=1, size=800x500, caret=12, inspector=no, find=texto, menu=problems, "
                   "menu=node, dialog=open. Se puede repetir."),
    QStringLiteral("clave=valor"));

const QCommandLineOption appearanceOption(QStringLiteral("appearance"),
                                          QStringLiteral("Claro u oscuro, diga lo que diga el escritorio."),
                                          QStringLiteral("light|dark"));

const QCommandLineOption helpOption({QStringLiteral("h"), QStringLiteral("help")},
                                    QStringLiteral("Muestra esta ayuda y termina."));
const QCommandLineOption versionOption({QStringLiteral("v"), QStringLiteral("version")},
                                       QStringLiteral("Muestra la versión y termina."));
const QCommandLineOption traceOption(QStringLiteral("trace"),
                                     QStringLiteral("Al terminar, escribe en qué se fue el tiempo."),
                                     QStringLiteral("archivo.json"));

/// The file that an argument of the command line means: a path or a `file:` URL.
QString localPath(const QString& argument) {
    return argument.startsWith(QStringLiteral("file:")) ? FilePath::of(QUrl(argument)) : argument;
}

/// What the desktop gave this start, so that a window may take the focus.
QByteArray startupToken() {
    const QByteArray token = qgetenv("XDG_ACTIVATION_TOKEN");
    return token.isEmpty() ? qgetenv("DESKTOP_STARTUP_ID") : token;
}

RecentFiles::Interest recentInterest() {
    RecentFiles::Interest interest;
    for (const ContentType& type : XMLFileDocument::contentTypes()) {
        interest.mimeTypes += type.mimeTypes;
        interest.suffixes += type.fileSuffixes;
    }
    interest.program = QCoreApplication::applicationName();
    interest.command = QStringLiteral("tamo %u");
    return interest;
}

void printError(const QString& text) { std::fprintf(stderr, "tamo: %s\n", qUtf8Printable(text)); }

bool writeTrace(const QString& path) {
    const auto records = Signposter::takeRecords();
    QSaveFile file(path);
    const bool written =
        file.open(QIODevice::WriteOnly) && file.write(Signposter::trace(records)) >= 0 && file.commit();
    if (!written) {
        printError(QStringLiteral("No se pudo guardar “%1”.").arg(path));
    }
    return written;
}

} // namespace

TamoApp::TamoApp() {
    QCoreApplication::setApplicationName(QStringLiteral("Tamo"));
    QCoreApplication::setApplicationVersion(QStringLiteral(TAMO_VERSION));
    QLocale::setDefault(QLocale(QLocale::Spanish, QLocale::Spain));
    if (m_translator.load(QStringLiteral("qtbase_es"), QLibraryInfo::path(QLibraryInfo::TranslationsPath))) {
        QCoreApplication::installTranslator(&m_translator);
    }
    QCoreApplication::installTranslator(&m_toolkitTexts);
}

TamoApp::~TamoApp() = default;

int TamoApp::run(const QStringList& arguments) {
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral("Editor de XML para el escritorio."));
    parser.addOptions(
        {helpOption, versionOption, screenshotOption, stateOption, appearanceOption, traceOption});
    parser.addPositionalArgument(QStringLiteral("archivo"),
                                 QStringLiteral("Archivos que abrir, cada uno en su ventana."),
                                 QStringLiteral("[archivo…]"));
    parser.process(arguments);
    if (parser.isSet(helpOption)) {
        parser.showHelp();
    }
    if (parser.isSet(versionOption)) {
        parser.showVersion();
    }
    Signposter::setRecording(parser.isSet(traceOption));
    const int code = runWith(parser);
    return !parser.isSet(traceOption) || writeTrace(parser.value(traceOption)) ? code : EXIT_FAILURE;
}

int TamoApp::runWith(const QCommandLineParser& options) {
    QStringList files;
    for (const QString& argument : options.positionalArguments()) {
        files += localPath(argument);
    }
    const bool isPicture = options.isSet(screenshotOption);
    if (!isPicture && handOver(files)) {
        return EXIT_SUCCESS;
    }
    m_appearance = std::make_unique<ApplicationAppearance>();
    if (options.isSet(appearanceOption)) {
        m_appearance->setOverride(appearance(options.value(appearanceOption)));
    }
    m_controller = std::make_unique<DocumentController>(std::make_unique<EditorDocumentType>());
    m_appDelegate = std::make_unique<AppDelegate>([this] {
        return m_controller->hasOpenDocuments() ||
               (m_recoveryOffer != nullptr && m_recoveryOffer->isUnderWay());
    });
    m_appDelegate->applicationDidFinishLaunching();
    connect(m_controller.get(), &DocumentController::openingFailed, this, &TamoApp::showFailure);
    connect(m_controller.get(), &DocumentController::readyToQuit, qApp, &QApplication::quit);
    if (isPicture) {
        m_picture =
            std::make_unique<WindowPicture>(options.value(screenshotOption), options.values(stateOption));
        connect(m_controller.get(), &DocumentController::windowOpened, m_picture.get(), &WindowPicture::take);
    } else {
        startServices();
    }
    if (files.isEmpty()) {
        m_controller->newDocument();
    }
    m_controller->open(files);
    const int code = QApplication::exec();
    m_recoveryOffer.reset();
    m_sessionQuestion.reset();
    m_controller.reset();
    return code;
}

/// Whether another start of the program took `files` over.
bool TamoApp::handOver(const QStringList& files) {
    Handover handover{{}, startupToken()};
    for (const QString& file : files) {
        handover.files += FilePath::url(FilePath::absolute(file));
    }
    m_instance = std::make_unique<SingleInstance>();
    connect(m_instance.get(), &SingleInstance::handedOver, this, &TamoApp::takeOver);
    return m_instance->start(handover) == SingleInstance::Role::second;
}

/// What goes on beside the documents of a program that a person works with.
void TamoApp::startServices() {
    const auto store = std::make_shared<RecoveryStore>();
    m_controller->setRecoveryStore(store);
    m_recentFiles = std::make_unique<RecentFiles>(recentInterest());
    m_controller->setRecentFiles(m_recentFiles.get());
    m_sessionQuestion = std::make_unique<SessionQuestion>(*m_controller);
    m_recoveryOffer = std::make_unique<RecoveryOffer>(store, *m_controller);
    m_recoveryOffer->start();
}

/// Opens what a later start was given, and comes to the front.
void TamoApp::takeOver(const Handover& handover) {
    if (!handover.startupToken.isEmpty()) {
        // The window system takes it from here when a window wants the focus.
        qputenv("XDG_ACTIVATION_TOKEN", handover.startupToken);
    }
    const auto open = m_controller->windows();
    if (open.empty() && handover.files.isEmpty()) {
        m_controller->newDocument();
    } else if (!open.empty()) {
        DocumentController::raise(*open.back());
    }
    m_controller->openFiles(handover.files);
}

void TamoApp::showFailure(const QString& path, const QString& message) {
    static_cast<void>(path);
    if (m_picture != nullptr) {
        // Nobody is there to read a box.
        printError(message);
        QCoreApplication::exit(EXIT_FAILURE);
        return;
    }
    QMessageBox box(QMessageBox::Warning, QCoreApplication::applicationName(), message, QMessageBox::Ok,
                    QApplication::activeWindow());
    box.setTextFormat(Qt::PlainText);
    box.exec();
    const bool isRecovering = m_recoveryOffer != nullptr && m_recoveryOffer->isUnderWay();
    if (!m_controller->hasOpenDocuments() && !isRecovering) {
        QCoreApplication::exit(EXIT_FAILURE);
    }
}
