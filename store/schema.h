// The tables of the database file: names, columns in the order of writing, widths, and
// the creation of a new file.
#pragma once

#include <QString>
#include <vector>

class VtDatabase;

struct ColumnSpec {
  const char* name;
  int width;  // characters; 0 for columns without a fixed width
};

struct TableSpec {
  const char* name;
  std::vector<ColumnSpec> columns;
  bool padded;      // written padded to the widths (USER, GENERAL_DATA)
  bool jetCompare;  // plain "=" on its columns uses the JETTEXT collation
};

// Every table of the file, used ones first, then the kept ones.
const std::vector<TableSpec>& SchemaTables();
// nullptr when unknown.
const TableSpec* FindTable(const QString& name);
// Width of a column; 0 when unknown.
int ColumnWidth(const QString& table, const QString& column);

// Creates every table and index and the initial rows (groups "G000000001" and
// "G999999999", instructor "U999999999") in an empty open database, in one transaction.
// Throws StoreError.
void CreateSchema(VtDatabase& db);

// Makes a new encrypted database file with CreateSchema. Refuses an existing file.
// False with the reason in error.
bool CreateDatabaseFile(const QString& path, const QString& password, QString* error);
