#include "app/OVCommandLine.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace {

struct QtOption {
  std::string_view name;
  bool takesValue;  // the next argument
};

// Those of Qt's libraries and of its X11 platform. Qt knows each with two dashes as well.
constexpr std::array kQtOptions{
    QtOption{"platform", true},
    QtOption{"platformpluginpath", true},
    QtOption{"platformtheme", true},
    QtOption{"plugin", true},
    QtOption{"qwindowgeometry", true},
    QtOption{"geometry", true},
    QtOption{"qwindowicon", true},
    QtOption{"icon", true},
    QtOption{"qwindowtitle", true},
    QtOption{"title", true},
    QtOption{"session", true},
    QtOption{"style", true},
    QtOption{"stylesheet", true},
    QtOption{"display", true},
    QtOption{"name", true},
    QtOption{"reverse", false},
    QtOption{"widgetcount", false},
    QtOption{"nograb", false},
    QtOption{"dograb", false},
};

// Null for what Qt does not know. A value may also follow after an equals sign.
const QtOption* qtOptionOf(std::string_view argument) {
  argument.remove_prefix(argument.starts_with("--") ? 2 : 1);
  const auto* const found =
      std::find_if(kQtOptions.begin(), kQtOptions.end(), [argument](const QtOption& option) {
        return argument == option.name || (option.takesValue && argument.starts_with(option.name) &&
                                           argument.substr(option.name.size()).starts_with("="));
      });
  return found == kQtOptions.end() ? nullptr : found;
}

}  // namespace

OVCommandLine::OVCommandLine(int argc, char** argv) {
  bool takesOptions = true;
  if (argc > 0) {
    forQt_.push_back(argv[0]);
  }
  for (int i = 1; i < argc && request_ == Request::openFiles; ++i) {
    const std::string argument = argv[i];
    if (!takesOptions || argument.size() < 2 || argument.front() != '-') {
      files_.push_back(argument);
    } else if (argument == "--") {
      takesOptions = false;
    } else if (const QtOption* const option = qtOptionOf(argument)) {
      forQt_.push_back(argv[i]);
      if (option->takesValue && argument.find('=') == std::string::npos && i + 1 < argc) {
        forQt_.push_back(argv[++i]);
      }
    } else {
      readOption(argument);
    }
  }
  forQt_.push_back(nullptr);
}

void OVCommandLine::readOption(const std::string& option) {
  if (option == "--help") {
    request_ = Request::printHelp;
  } else if (option == "--version") {
    request_ = Request::printVersion;
  } else {
    request_ = Request::refuseOption;
    unknownOption_ = option;
  }
}
