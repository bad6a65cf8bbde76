// A second process for tests that need one:
//   write-keys FILE SECTION PREFIX COUNT   writes PREFIX0..PREFIXn-1 one by one
//   rewrite FILE SECTION KEY SIZE          rewrites KEY with SIZE-byte values forever
//                                          (the test kills it in the middle)
#include "platform/IniFile.h"

#include <QCoreApplication>
#include <cstdio>

using namespace mirel;

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    const QStringList a = app.arguments();
    if (a.size() == 6 && a[1] == QLatin1String("write-keys")) {
        const int count = a[5].toInt();
        for (int i = 0; i < count; ++i) {
            const QByteArray key = a[4].toUtf8() + QByteArray::number(i);
            if (!IniFile::write(a[2], a[3].toUtf8(), key, "v" + QByteArray::number(i))) {
                std::fprintf(stderr, "write %d failed\n", i);
                return 2;
            }
        }
        return 0;
    }
    if (a.size() == 6 && a[1] == QLatin1String("rewrite")) {
        const qsizetype size = a[5].toLongLong();
        for (char c = 'a';; c = c == 'z' ? 'a' : char(c + 1)) {
            IniFile::write(a[2], a[3].toUtf8(), a[4].toUtf8(), QByteArray(size, c));
            std::printf("%c\n", c);
            std::fflush(stdout);
        }
    }
    std::fprintf(stderr, "usage: see source\n");
    return 1;
}
