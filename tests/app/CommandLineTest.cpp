#include "app/CommandLine.h"
#include "TestSupport.h"
#include "app/BundledTheme.h"
#include "app/SingleInstance.h"
#include "settings/Folders.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QLocalServer>
#include <gtest/gtest.h>
#include <sys/stat.h>

using namespace mirel;

// Catches an option taken loosely (extra words, unknown options, a bare
// command) and a program let through --send.
TEST(CommandLine, OnlySendAndQuitAreOptions) {
    const QStringList modes = {"Run", "Send", "Quit", "Invalid"};
    for (const auto& r : test::readTable("tables/command-line.txt")) {
        const QString args = QString::fromUtf8(r[0]);
        const CommandLine c =
            CommandLine::parse(args.isEmpty() ? QStringList() : args.split(" ; "));
        EXPECT_EQ(int(c.mode), modes.indexOf(QString::fromUtf8(r[1]))) << r[0].constData();
        EXPECT_EQ(c.command, r[2]) << r[0].constData();
    }
}

// Catches a socket others can create first, one socket shared by two data
// folders, and a start that hangs or gives
// up when whoever listens there never answers.
TEST(SingleInstance, PrivateSocketAndNoHangOnASilentListener) {
    test::TempDir dir;
    const QByteArray oldRuntime = qgetenv("XDG_RUNTIME_DIR");
    qputenv("XDG_RUNTIME_DIR", dir.path().toUtf8());
    QDir().mkdir(dir.file("mirel"));
    QFile::setPermissions(dir.file("mirel"), QFile::ReadOwner | QFile::WriteOwner |
                                                 QFile::ExeOwner | QFile::ReadOther |
                                                 QFile::ExeOther);
    const QString name = SingleInstance::serverName(dir.file("store"));
    EXPECT_TRUE(name.startsWith(dir.file("mirel/"))) << name.toStdString();
    EXPECT_NE(name, SingleInstance::serverName(dir.file("other"))) << "one per data folder";
    struct stat st {};
    ASSERT_EQ(::stat(QFile::encodeName(dir.file("mirel")).constData(), &st), 0);
    EXPECT_EQ(st.st_mode & 0777, 0700u);

    QLocalServer silent; // accepts (the kernel does) but never answers
    ASSERT_TRUE(silent.listen(name));
    QElapsedTimer t;
    t.start();
    SingleInstance first(name);
    EXPECT_TRUE(first.claimOrRaiseOther());
    EXPECT_LT(t.elapsed(), 4000);
    qputenv("XDG_RUNTIME_DIR", oldRuntime);
}

// Catches a theme copied over the user's edits, into a theme folder the
// user named, or without its preview picture and sound folder.
// The bundled theme is tests/data/app/bundled.
TEST(BundledTheme, CopiedOnceIntoAnEmptyThemeFolder) {
    test::TempDir dir;
    const QString source = test::testData("app/bundled/themes/Default");
    EXPECT_EQ(BundledTheme::locate({dir.file("nowhere"), source}), QDir::cleanPath(source));

    const Folders folders{dir.file("prog"), QStringLiteral("\\themes\\Default\\")};
    ASSERT_TRUE(BundledTheme::installIfMissing(folders, source));
    EXPECT_TRUE(QFileInfo(folders.themeFile("terminal.skn")).isFile());
    EXPECT_EQ(test::readAll(dir.file("prog/themes/Default/sounds/click.wav")), "RIFF");
    EXPECT_EQ(test::readAll(dir.file("prog/themes/Default.bmp")), "BM preview");

    // The user's edits are theirs: a second start copies nothing.
    test::writeAll(dir.file("prog/themes/Default/Terminal.skn"), "[DEFAULT]\r\nSound=1\r\n");
    EXPECT_FALSE(BundledTheme::installIfMissing(folders, source));
    EXPECT_EQ(test::readAll(dir.file("prog/themes/Default/Terminal.skn")),
              "[DEFAULT]\r\nSound=1\r\n");

    // Fault: a theme folder the user named (empty: the data root itself) was
    // filled too, and the preview picture landed beside the data root.
    for (const char* themeDir : {"", "\\", "\\mine\\"}) {
        Folders own{dir.file("own"), QString::fromLatin1(themeDir)};
        QDir().mkpath(own.ProgramDir);
        EXPECT_FALSE(BundledTheme::installIfMissing(own, source)) << themeDir;
        EXPECT_TRUE(QDir(own.ProgramDir).isEmpty()) << themeDir;
        EXPECT_FALSE(QFileInfo::exists(dir.file("own.bmp"))) << themeDir;
    }
}
