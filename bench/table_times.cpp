// Times on a deck with a big table: the bare decode of its numbers, and its conversion into a model
// in memory, which checks and stores them too. Prints one line of JSON with the best of each.

#include "bench/seconds.h"
#include "database/KvoObjDocument.h"
#include "inpS/driver/inpS_Inp2Sim.h"
#include "inpS/driver/inpS_Module.h"
#include "parser/inp_BulkDecode.h"
#include <algorithm>
#include <cstdio>
#include <exception>

int main(int count, char** words) try {
  if (count != 2) {
    std::fprintf(stderr, "usage: table_times DECK\n");
    return 2;
  }
  int uses = 0;
  KvoI2sInpS_initialize(uses);
  inpS_Inp2Sim driver(words[1], "");
  bool good = driver.Parse() && driver.CheckUtf8Compliance() && driver.Expand() &&
              driver.Reorganize() && driver.BuildInventory();
  inp_DataArray table;
  for (const inp_Keyword& keyword : driver.Keywords())
    if (keyword.Data().Rows() > table.Rows()) table = keyword.Data();
  double bare = 1e9, whole = 1e9;
  std::size_t values = 0;
  for (int round = 0; round < 5; ++round) {
    bare = std::min(bare, secondsOf([&] {
                      utl_Buffer<double> numbers;
                      // Lines that begin with names are no rows of numbers: nothing is decoded.
                      if (inp_decodeRows(table, table.Cols(0), numbers)) values = numbers.Size();
                    }));
    whole = std::min(whole,
                     secondsOf([&] { good = driver.Convert(KvoObjDocument::InMemory()) && good; }));
  }
  KvoI2sInpS_finalize(uses);
  std::printf("{\"values\": %zu, \"bare_seconds\": %.4f, \"convert_seconds\": %.4f}\n", values,
              bare, whole);
  return good ? 0 : 1;
} catch (const std::exception& problem) {
  std::fprintf(stderr, "table_times: %s\n", problem.what());
  return 3;
}
