/// Makes tables and a picture of what script/bench has measured:
///
///   bench_report RESULTS [--plot FILE.svg]
///
/// RESULTS has lines "ROAD,FORMATS,METRIC,VALUE". The tables, in Markdown, go to standard output.
#include <CLI/CLI.hpp>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <fstream>
#include <stdexcept>
#include <string>

#include "bench/road/plot.h"
#include "bench/road/results.h"
#include "bench/road/tables.h"

namespace {

using zem::bench::Results;

Results read(const std::string& path) {
  std::ifstream file(path);
  if (!file) throw std::runtime_error("can not read " + path);
  return Results(file);
}

void write(const std::string& path, const std::string& text) {
  std::ofstream file(path);
  file << text;
  if (!file.flush()) throw std::runtime_error("can not write " + path);
}

void report(const std::string& results_path, const std::string& plot_path) {
  const Results results = read(results_path);
  const std::string tables =
      zem::bench::figure_tables(results) + zem::bench::verdict_table(results);
  std::fputs(tables.c_str(), stdout);
  if (!plot_path.empty()) write(plot_path, zem::bench::plot(results));
}

}  // namespace

int main(int argc, char** argv) {
  CLI::App app("Makes tables and a picture of what script/bench has measured");
  std::string results;
  std::string picture;
  app.add_option("RESULTS", results, "Lines ROAD,FORMATS,METRIC,VALUE")->required();
  app.add_option("--plot", picture, "The picture, as SVG");
  try {
    app.parse(argc, argv);
    report(results, picture);
    return EXIT_SUCCESS;
  } catch (const CLI::ParseError& error) {
    return app.exit(error);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "bench_report: %s\n", error.what());
    return EXIT_FAILURE;
  }
}
