#pragma once
// Only one main window runs per settings store. The running instance listens
// on a local socket in the user's private runtime folder, named after the
// store's folder (the mailboxes live in that store, so it is the unit that
// must not be shared by two windows); a later start connects, asks the first to come
// to the front and ends. A short lock around "is anyone there? / listen"
// keeps two simultaneous starts from both deciding they are first.
#include <QObject>
#include <QString>

class QLocalServer;

namespace mirel {

/// The single-instance rule over QLocalServer.
class SingleInstance : public QObject {
    Q_OBJECT
  public:
    /// "<runtime folder>/instance-<hash of storeRoot>"; empty when there is
    /// no private runtime folder.
    static QString serverName(const QString& storeRoot);
    /// $XDG_RUNTIME_DIR/mirel (or Qt's private runtime folder), created
    /// 0700; empty unless it is a folder of this user that nobody else may
    /// enter.
    static QString runtimeFolder();

    explicit SingleInstance(QString name, QObject* parent = nullptr);
    ~SingleInstance() override;

    /// Sends one request line to a running instance and waits for its
    /// answer; false when nobody answers properly within timeoutMs in all.
    static bool ask(const QString& name, const QByteArray& request, int timeoutMs = 2000);

    /// Becomes the running instance unless one answers already; when one
    /// does, asks it to come to the front and returns false.
    bool claimOrRaiseOther();

  Q_SIGNALS:
    /// A later start asked this instance to come to the front.
    void raiseRequested();

  private:
    void serve();

    QString m_name;
    QLocalServer* m_server = nullptr;
};

} // namespace mirel
