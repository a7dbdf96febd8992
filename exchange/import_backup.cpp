// The backup taken before a CSV import stores anything. An import adds receptions and
// may register users; a copy of the database made here lets a person go back. Without
// that copy the import does not start: a full disk or an unwritable backup folder is
// better told before the import than found out after it.
#include "exchange/csv_batch.h"
#include "store/backup.h"

bool BackupBeforeCsvImport(VtDatabase& /*db*/, QString& message) {
  const BackupOutcome outcome = MakeAutomaticBackup(QStringLiteral("CSV import"));
  if (!outcome.ok) message = outcome.message;
  return outcome.ok;
}
