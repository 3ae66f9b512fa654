#include "app/OVCommandLineText.h"

#include <algorithm>
#include <array>
#include <span>

#include <QStringList>

#include "app/wrappedText.h"
#include "platform/mainloop/Localization.h"
#include "platform/mainloop/ShownName.h"

using platform::localized;
using platform::TextKey;
using platform::textKey;

namespace {

struct Entry {
  const char* term;  // the same in every language
  TextKey text;
};

struct Section {
  TextKey heading;
  const char* manualHeading;  // null: in the manual, part of the description
  std::span<const Entry> entries;
};

constexpr TextKey kUsage = textKey("Usage: orvo [OPTION…] [--] [FILE…]");
constexpr TextKey kDescription = textKey(
    "Orvo records from the default sound input, shows the growing waveform, and plays it back. "
    "Each file opens in a window of its own. Without a file, an empty recorder opens.");

constexpr std::array kArguments{
    Entry{"FILE", textKey("A path or a file:// address. Orvo opens caf, aif, aiff, wav, mp3, mp4, "
                          "m4a, m4r and aac.")},
    Entry{"--",
          textKey("Ends the options. What follows is a file, even if it begins with a dash.")},
    Entry{"--help", textKey("Prints this text.")},
    Entry{"--version", textKey("Prints the version.")},
    Entry{"-platform, -style", textKey("These and the other options of Qt are passed on to Qt.")},
};

constexpr std::array kEnvironment{
    Entry{"LANGUAGE, LC_ALL, LANG",
          textKey("The language of the texts: English, German, French, Spanish, Japanese or "
                  "Simplified Chinese.")},
    Entry{"TMPDIR", textKey("The directory in which open recordings are kept, 20 MB a minute. "
                            "Otherwise /tmp, or /var/tmp if /tmp is in memory.")},
    Entry{"XDG_DATA_HOME",
          textKey("If Orvo ends unexpectedly, recordings that were not saved are kept in "
                  "orvo/recovered below this directory. Otherwise below ~/.local/share.")},
};

constexpr std::array kExitStatus{
    Entry{"0", textKey("Orvo ended as asked.")},
    Entry{"1", textKey("The help or the version could not be printed.")},
    Entry{"2", textKey("An option is unknown. Nothing was opened.")},
};

constexpr std::array kSections{
    Section{textKey("Arguments:"), nullptr, kArguments},
    Section{textKey("Environment:"), "ENVIRONMENT", kEnvironment},
    Section{textKey("Exit status:"), "EXIT STATUS", kExitStatus},
};

constexpr int kIndentation = 6;
constexpr int kFewestColumns = 30;
constexpr int kMostColumns = 76;  // longer lines are hard to read

// Text of a manual page: dashes as they are typed, signs outside ASCII by their numbers.
std::string escaped(const QString& text) {
  std::string result;
  for (const QChar character : text) {
    const char16_t code = character.unicode();
    if (code == u'\\') {
      result += "\\e";
    } else if (code == u'-') {
      result += "\\-";
    } else if (code < 0x80) {
      result += static_cast<char>(code);
    } else {
      result += "\\[u" +
                QStringLiteral("%1")
                    .arg(static_cast<int>(code), 4, 16, QLatin1Char('0'))
                    .toUpper()
                    .toStdString() +
                "]";
    }
  }
  return result;
}

// Each sentence begins a line, as the language of manual pages wants it.
std::string sentences(TextKey key) {
  std::string result;
  QString text = QString::fromUtf8(key.english());
  for (const QString& sentence :
       text.replace(QLatin1String(". "), QLatin1String(".\n")).split(u'\n')) {
    result += escaped(wrappedText(sentence, 0, kMostColumns).chopped(1)) + "\n";
  }
  return result;
}

// "-platform, -style": each option with its mark.
std::string termOf(const char* term) {
  std::string result;
  for (const QString& part : QString::fromUtf8(term).split(QLatin1String(", "))) {
    result += result.empty() ? "" : " , ";
    if (part == QLatin1String("--")) {
      result += "Fl Fl";
    } else if (part.startsWith(u'-')) {
      result += "Fl " + escaped(part.mid(1));
    } else {
      result += (part == QLatin1String("FILE") ? "Ar " : "Ev ") + escaped(part);
    }
  }
  return result;
}

std::string listOf(const Section& section) {
  std::string result = ".Bl -tag -width Ds\n";
  for (const Entry& entry : section.entries) {
    const bool isStatus = section.entries.data() == kExitStatus.data();
    result += ".It " + (isStatus ? std::string(entry.term) : termOf(entry.term)) + "\n" +
              sentences(entry.text);
  }
  return result + ".El\n";
}

// "November 22, 2026", in every locale.
std::string manualDate(const std::string& date) {
  static constexpr std::array kMonths{"January",   "February", "March",    "April",
                                      "May",       "June",     "July",     "August",
                                      "September", "October",  "November", "December"};
  const QStringList parts = QString::fromStdString(date).split(u'-');
  const int month = parts.value(1).toInt();
  if (month < 1 || month > 12) {
    return date;
  }
  return kMonths.at(static_cast<std::size_t>(month - 1)) + std::string(" ") +
         std::to_string(parts.value(2).toInt()) + ", " + parts.value(0).toStdString();
}

}  // namespace

QString OVCommandLineText::help(std::optional<int> terminalColumns) {
  const int columns =
      std::clamp(terminalColumns.value_or(kMostColumns), kFewestColumns, kMostColumns);
  QString text = wrappedText(localized(kUsage), 0, columns) + u'\n' +
                 wrappedText(localized(kDescription), 0, columns);
  for (const Section& section : kSections) {
    text += u'\n' + localized(section.heading) + u'\n';
    for (const Entry& entry : section.entries) {
      text += QLatin1String("  ") + QString::fromUtf8(entry.term) + u'\n' +
              wrappedText(localized(entry.text), kIndentation, columns);
    }
  }
  return text;
}

QString OVCommandLineText::refusalOf(const std::string& option) {
  return localized("orvo: unknown option: %1\nTry orvo --help").arg(platform::shownName(option)) +
         u'\n';
}

std::string OVCommandLineText::manualPage(const std::string& date) {
  std::string page = ".Dd " + manualDate(date) +
                     "\n.Dt ORVO 1\n.Os\n.Sh NAME\n.Nm orvo\n"
                     ".Nd audio recorder and simple editor\n"
                     ".Sh SYNOPSIS\n.Nm\n.Op Ar OPTION ...\n.Op Fl Fl\n.Op Ar\n"
                     ".Sh DESCRIPTION\n" +
                     sentences(kDescription);
  for (const Section& section : kSections) {
    if (section.manualHeading != nullptr) {
      page += std::string(".Sh ") + section.manualHeading + "\n";
    }
    page += listOf(section);
  }
  return page;
}
