// What the qv modtran commands share: reading a deck or a table from a path
// or standard input ("-"), and printing a tape7 table.
#pragma once

#include "Input.h"

#include <cstdio>

#include "qv/files/MemFile.h"
#include "qv/modtran/ModtranTape5File.h"
#include "qv/modtran/ModtranTape7File.h"

namespace qvtool {


// Loads a deck; on failure prints "<path>: <last error>" and gives false.
bool LoadTape5(char const *path, qv::CModtranTape5File &tape5);

// Loads every column of a table that Load can be asked for; false (with the
// message printed) when the table does not load.
bool LoadWholeTape7(char const *path, qv::CModtranTape7File &tape7);

// The table: a heading of column names, then one line per row (with the run
// number first when there are several runs); aligned, or comma-separated.
void PrintTape7(std::FILE *out, qv::CModtranTape7File const &tape7, bool csv);

} // namespace qvtool
