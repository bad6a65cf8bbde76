#pragma once
// Small helpers shared by the tests: temporary folders, whole-file access,
// a message sink that records instead of showing, and the helper process.
#include "platform/MessageSink.h"

#include <QByteArray>
#include <QProcess>
#include <QStringList>
#include <QTemporaryDir>
#include <vector>

namespace mirel::test {

QByteArray readAll(const QString& path);
void writeAll(const QString& path, const QByteArray& bytes);

/// A temporary folder removed at the end of the test.
class TempDir {
public:
    TempDir();
    QString path() const { return m_dir.path(); }
    QString file(const QString& name) const { return m_dir.path() + QLatin1Char('/') + name; }

private:
    QTemporaryDir m_dir;
};

/// Records every message and answers questions with a preset answer.
class RecordingMessageSink final : public MessageSink {
public:
    struct Shown {
        QString text, title;
        Icon icon;
    };
    void showMessage(const QString& text, const QString& title, Icon icon) override {
        shown.push_back({text, title, icon});
    }
    bool askYesNo(const QString& text, const QString& title) override {
        asked.push_back({text, title, Icon::Question});
        return answer;
    }
    Answer askYesNoCancel(const QString& text, const QString& title) override {
        asked.push_back({text, title, Icon::Question});
        return threeWay;
    }
    std::vector<Shown> shown;
    std::vector<Shown> asked;
    bool answer = true;
    Answer threeWay = Answer::Cancel;
};

/// Starts tests/support/helper with the given arguments.
QProcess* startHelper(const QStringList& args);
/// Runs the helper to the end; returns its exit code.
int runHelper(const QStringList& args, QByteArray* output = nullptr);

QString testData(const QString& relative);

/// Rows of a table file in tests/data: one row a line, fields split at " | ",
/// escapes \r \n \t \0 \xHH and \\ decoded; blank lines and "#" lines skipped.
QList<QList<QByteArray>> readTable(const QString& relative);

/// Creates the QCoreApplication that signal-driven core tests need, once.
void ensureCoreApp();

} // namespace mirel::test
