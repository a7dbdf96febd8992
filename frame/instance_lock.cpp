#include "frame/instance_lock.h"

#include <QCryptographicHash>
#include <QDir>
#include <QLockFile>

QString InstanceLockPath(const QString& workingFolder) {
  const QByteArray key =
      QCryptographicHash::hash(QDir(workingFolder).canonicalPath().toUtf8(), QCryptographicHash::Sha1)
          .toHex()
          .left(16);
  return QDir(QDir::tempPath()).filePath(QStringLiteral("vantora-") + QString::fromLatin1(key) +
                                         QStringLiteral(".lock"));
}

std::unique_ptr<QLockFile> ClaimInstallation(const QString& workingFolder) {
  auto lock = std::make_unique<QLockFile>(InstanceLockPath(workingFolder));
  // Only the process id decides whether a lock is stale, never its age.
  lock->setStaleLockTime(0);
  if (!lock->tryLock(0)) return nullptr;
  return lock;
}
