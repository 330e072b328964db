// Rows of the tables from which the reports in docs/ are made.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace orva::test
{

/// Whether this is the thorough run: the environment variable ORVA_THOROUGH is set and not empty.
bool IsThorough();

/// `few` in the normal run, `many` in the thorough one.
int Repetitions(int few, int many);

/// Adds a row to the table `table`, a file of tab-separated UTF-8 lines `report/TABLE.tsv` in the working
/// folder, from which tools/make-reliability makes a page, sorted by the first cell. Programs that run at the
/// same time may add to one table. A tab or a line end in a cell becomes a blank. Throws std::runtime_error
/// if the file cannot be written.
void AddReportRow(std::string_view table, const std::vector<std::string>& cells);

} // namespace orva::test
