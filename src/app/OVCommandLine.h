#pragma once

#include <string>
#include <vector>

/// What the program's arguments ask for. They name files and configure nothing; options of Qt,
/// which every Qt program knows, are set apart for Qt.
///
/// Threads: any. Real-time: not safe.
class OVCommandLine {
 public:
  enum class Request { openFiles, printHelp, printVersion, refuseOption };

  /// Reads the arguments of main(), whose first is the program's name. The first one that asks for
  /// anything but files decides, so nothing is opened beside an unknown option. `-` alone is a
  /// file.
  OVCommandLine(int argc, char** argv);

  [[nodiscard]] Request request() const { return request_; }
  /// The option that is not known; empty for none.
  [[nodiscard]] const std::string& unknownOption() const { return unknownOption_; }
  /// The files, as they were given: paths or URIs, byte for byte.
  [[nodiscard]] const std::vector<std::string>& files() const { return files_; }
  /// The program's name and the options of Qt, then a null pointer, as in main().
  [[nodiscard]] std::vector<char*>& forQt() { return forQt_; }

 private:
  void readOption(const std::string& option);

  Request request_ = Request::openFiles;
  std::string unknownOption_;
  std::vector<std::string> files_;
  std::vector<char*> forQt_;
};
