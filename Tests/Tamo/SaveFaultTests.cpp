#include "DocumentDesk.h"
#include "EditorDocument.h"
#include "OrdinaryUser.h"
#include "RecoveryStore.h"

#include <QDir>
#include <QThreadPool>

#include <cerrno>
#include <cstring>

#include <sys/mount.h>

namespace {

using namespace std::chrono_literals;

/// Something mounted for the time of a test, where the system lets us.
class Mount {
public:
    Mount(const QString& source, const QString& folder, const char* type, unsigned long flags,
          const char* options)
        : m_folder(QFile::encodeName(folder)) {
        m_isMounted =
            mount(QFile::encodeName(source).constData(), m_folder.constData(), type, flags, options) == 0;
        m_error = m_isMounted ? 0 : errno;
    }
    ~Mount() {
        if (m_isMounted) {
            umount2(m_folder.constData(), MNT_DETACH);
        }
    }
    Mount(const Mount&) = delete;
    Mount& operator=(const Mount&) = delete;

    bool isMounted() const { return m_isMounted; }
    const char* reason() const { return std::strerror(m_error); }

private:
    const QByteArray m_folder;
    bool m_isMounted = false;
    int m_error = 0;
};

const QByteArray oldFile = "<a>" + QByteArray(40'000, 'x') + "</a>\n";

/// A file that is open and has changes, which something will keep from being saved.
struct Desk {
    QTemporaryDir keeping;
    QTemporaryDir folder;
    QString files = folder.filePath(QStringLiteral("archivos"));
    QString path = files + QStringLiteral("/a.xml");
    DocumentWindow* window = nullptr;

    Desk() { QDir().mkpath(files); }

    void open() {
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(oldFile);
        file.close();
        m_controller->setRecoveryStore(m_store);
        QSignalSpy opened(m_controller.get(), &DocumentController::windowOpened);
        m_controller->open({path});
        ASSERT_TRUE(opened.wait(10'000));
        window = m_controller->windows().front();
        static_cast<EditorDocument*>(window->document())->file().buffer().type({}, u"<!-- mío -->");
        ASSERT_TRUE(window->isWindowModified());
    }

    /// Saves in vain, checks what the user is told, and that the text still counts as unsaved.
    void checkSave(const QString& reason) {
        QSignalSpy ended(window, &DocumentWindow::savingEnded);
        const Answer answer(QStringLiteral("OK"));
        window->save();
        ASSERT_TRUE(ended.wait(20'000));
        EXPECT_FALSE(ended.first().first().toBool());
        EXPECT_TRUE(QTest::qWaitFor([&] { return !answer.question().isEmpty(); }));
        EXPECT_EQ(answer.question(),
                  QStringLiteral("No se pudo guardar “a.xml”: %1. El archivo en disco no ha cambiado.")
                      .arg(reason));
        EXPECT_TRUE(window->isWindowModified());
    }
    /// Ends like a crash, which loses nothing.
    void checkKept() {
        m_controller.reset();
        m_store.reset();
        RecoveryStore later(keeping.path());
        const auto left = later.recoverable().documents;
        ASSERT_EQ(left.size(), 1U);
        const auto text = later.take(left.front().id);
        ASSERT_TRUE(text.has_value());
        EXPECT_EQ(text->text.units(text->text.fullRange()),
                  u"<!-- mío -->" + QString::fromLatin1(oldFile).toStdU16String());
    }
    void checkFile() const {
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::ReadOnly));
        EXPECT_EQ(file.readAll(), oldFile);
        EXPECT_EQ(QDir(files).entryList(QDir::Files | QDir::Hidden), QStringList{QStringLiteral("a.xml")})
            << "nothing is left beside it";
    }

private:
    std::shared_ptr<RecoveryStore> m_store =
        std::make_shared<RecoveryStore>(keeping.path(), RecoveryPace{.flushDelay = 1ms});
    std::unique_ptr<DocumentController> m_controller =
        std::make_unique<DocumentController>(std::make_unique<EditorDocumentType>());
};

} // namespace

TEST(SaveFault, FullDisk) {
    Desk desk;
    const Mount disk(QStringLiteral("tmpfs"), desk.files, "tmpfs", 0, "size=64k");
    if (!disk.isMounted()) {
        GTEST_SKIP() << "nothing can be mounted here: " << disk.reason();
    }
    desk.open();
    desk.checkSave(QStringLiteral("no queda espacio en el disco"));
    desk.checkKept();
    desk.checkFile();
}

TEST(SaveFault, DiskThatBecameReadOnly) {
    Desk desk;
    const Mount disk(desk.files, desk.files, nullptr, MS_BIND, nullptr);
    if (!disk.isMounted()) {
        GTEST_SKIP() << "nothing can be mounted here: " << disk.reason();
    }
    desk.open();
    ASSERT_EQ(mount(nullptr, QFile::encodeName(desk.files).constData(), nullptr,
                    MS_REMOUNT | MS_BIND | MS_RDONLY, nullptr),
              0);
    desk.checkSave(QStringLiteral("no tienes permiso para escribir el archivo"));
    desk.checkKept();
    desk.checkFile();
}

TEST(SaveFault, PermissionTakenAway) {
    constexpr auto toRead = QFile::ReadOwner | QFile::ReadGroup | QFile::ReadOther;
    constexpr auto toEnter = QFile::ExeOwner | QFile::ExeGroup | QFile::ExeOther;
    Desk desk;
    desk.open();
    ASSERT_TRUE(QFile::setPermissions(desk.path, toRead));
    ASSERT_TRUE(QFile::setPermissions(desk.files, toRead | toEnter));
    ASSERT_TRUE(QFile::setPermissions(desk.folder.path(), toRead | toEnter | QFile::WriteOwner));
    // Workers that start from now on are somebody else.
    QThreadPool::globalInstance()->waitForDone();
    {
        const OrdinaryUser user(desk.files);
        desk.checkSave(QStringLiteral("no tienes permiso para escribir el archivo"));
    }
    QThreadPool::globalInstance()->waitForDone();
    desk.checkKept();
    desk.checkFile();
    QFile::setPermissions(desk.files, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
}

TEST(SaveFault, FolderGone) {
    Desk desk;
    desk.open();
    ASSERT_TRUE(QDir(desk.files).removeRecursively());
    desk.checkSave(QStringLiteral("la carpeta no existe"));
    desk.checkKept();
}
