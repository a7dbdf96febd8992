// The lock that marks an installation as in use. The desktop program holds it while it
// runs; work that must not happen under a running program (restoring the database) takes
// it for its own duration, so neither can start while the other is at work.
#pragma once

#include <QString>
#include <memory>

class QLockFile;

// The lock file of the installation whose working folder (bin/) is given: in the
// system's temp folder (the installation's own temp folder is emptied by the main
// screen), named after the folder so that two installations can run side by side.
QString InstanceLockPath(const QString& workingFolder);

// The lock of the installation, held by this process while the object lives; null when
// another living process holds it. A lock left by a process that died is taken over.
std::unique_ptr<QLockFile> ClaimInstallation(const QString& workingFolder);
