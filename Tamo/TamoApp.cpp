#include "TamoApp.h"

#include "DocumentWindow.h"
#include "Signposter.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QFileDialog>
#include <QFileInfo>
#include <QLibraryInfo>
#include <QLocale>
#include <QMessageBox>
#include <QSaveFile>
#include <QTimer>
#include <QUrl>
#include <QWindow>

#include <cstdio>

namespace {

const QCommandLineOption
    screenshotOption(QStringLiteral("screenshot"),
                     QStringLiteral("Guarda una imagen de la primera ventana y termina."),
                     QStringLiteral("archivo.png"));

const QCommandLineOption helpOption({QStringLiteral("h"), QStringLiteral("help")},
                                    QStringLiteral("Muestra esta ayuda y termina."));
const QCommandLineOption versionOption({QStringLiteral("v"), QStringLiteral("version")},
                                       QStringLiteral("Muestra la versión y termina."));
const QCommandLineOption traceOption(QStringLiteral("trace"),
                                     QStringLiteral("Al terminar, escribe en qué se fue el tiempo."),
                                     QStringLiteral("archivo.json"));

/// The file that an argument of the command line means: a path or a `file:` URL.
QString localPath(const QString& argument) {
    return argument.startsWith(QStringLiteral("file:")) ? QUrl(argument).toLocalFile() : argument;
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
}

int TamoApp::run(const QStringList& arguments) {
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral("Editor de XML para el escritorio."));
    parser.addOptions({helpOption, versionOption, screenshotOption, traceOption});
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
    const int code = runWith(parser.positionalArguments(), parser.value(screenshotOption));
    return !parser.isSet(traceOption) || writeTrace(parser.value(traceOption)) ? code : EXIT_FAILURE;
}

int TamoApp::runWith(const QStringList& files, const QString& picture) {
    m_isBatch = !picture.isEmpty();
    const int failures = openAll(files);
    if (m_first == nullptr || (m_isBatch && failures != 0)) {
        return EXIT_FAILURE;
    }
    if (m_isBatch) {
        takePicture(m_first, picture);
    }
    return QApplication::exec();
}

int TamoApp::openAll(const QStringList& files) {
    if (files.isEmpty()) {
        openUntitled();
    }
    int failures = 0;
    for (const QString& file : files) {
        failures += open(localPath(file)) == nullptr;
    }
    return failures;
}

DocumentWindow* TamoApp::open(const QString& path) {
    auto document = XMLFileDocument::read(path);
    if (document) {
        return show(
            std::make_unique<DocumentWindow>(std::move(*document), QFileInfo(path).absoluteFilePath()));
    }
    const QString text = message(document.error(), path);
    if (m_isBatch) {
        printError(text);
    } else {
        QMessageBox box(QMessageBox::Warning, QStringLiteral("Tamo"), text, QMessageBox::Ok,
                        QApplication::activeWindow());
        box.setTextFormat(Qt::PlainText);
        box.exec();
    }
    return nullptr;
}

DocumentWindow* TamoApp::openUntitled() {
    return show(std::make_unique<DocumentWindow>(std::make_unique<XMLFileDocument>(), QString()));
}

DocumentWindow* TamoApp::show(std::unique_ptr<DocumentWindow> window) {
    // From here on the window lives until it is closed.
    DocumentWindow* const shown = window.release();
    connect(shown, &DocumentWindow::newRequested, this, &TamoApp::openUntitled);
    connect(shown, &DocumentWindow::openRequested, this, [this, shown] { chooseAndOpen(shown); });
    if (m_first == nullptr) {
        m_first = shown;
    }
    shown->show();
    return shown;
}

void TamoApp::chooseAndOpen(DocumentWindow* from) {
    QStringList patterns;
    for (const ContentType& type : XMLFileDocument::contentTypes()) {
        for (const QString& suffix : type.fileSuffixes) {
            patterns += QStringLiteral("*.") + suffix;
        }
    }
    const QString types =
        QStringLiteral("Documentos XML (%1);;Todos los archivos (*)").arg(patterns.join(QChar(u' ')));
    const QString folder = from->path().isEmpty() ? QString() : QFileInfo(from->path()).path();
    const bool wasPristine = from->isPristine();
    bool opened = false;
    for (const QString& path : QFileDialog::getOpenFileNames(from, QStringLiteral("Abrir"), folder, types)) {
        opened = open(path) != nullptr || opened;
    }
    if (opened && wasPristine) {
        from->close();
    }
}

void TamoApp::takePicture(DocumentWindow* window, const QString& path) {
    const auto take = [window, path] {
        const bool saved = window->grab().save(path);
        if (!saved) {
            printError(QStringLiteral("No se pudo guardar “%1”.").arg(path));
        }
        QCoreApplication::exit(saved ? EXIT_SUCCESS : EXIT_FAILURE);
    };
    // The first parse arrives through the event loop, so not before this; the layout that it asks for is done
    // by the time that the loop has nothing else to do.
    connect(
        &window->session(), &EditorSession::treeChanged, window,
        [window, take] { QTimer::singleShot(0, window, take); }, Qt::SingleShotConnection);
}
