// What the desktop and the packagers' tools read of an installation.
#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>

#include <gmock/gmock.h>

#include "installation/InstallationFixture.h"

namespace {

namespace fs = std::filesystem;
using support::Finished;
using testing::AllOf;
using testing::ContainsRegex;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

const std::string kId = ORVO_APPLICATION_ID;

std::string contentOf(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

std::vector<std::string> lines(const std::string& text) {
  std::vector<std::string> result;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) {
    result.push_back(line);
  }
  return result;
}

class Installation : public InstallationFixture {
 protected:
  /// A home, and data directories of which the installation is the first.
  support::Environment desktop() {
    return {{"PATH", at(ORVO_INSTALLED_BINARIES) + ":/usr/bin:/bin"},  // else its entry is ignored
            {"XDG_DATA_DIRS", at("share") + ":/usr/local/share:/usr/share"},
            {"XDG_DATA_HOME", home_.path()},
            {"XDG_CONFIG_HOME", home_.path()}};
  }

  /// Has the desktop read the installed entry and MIME file, as a package's triggers do.
  void register_() {
    for (const std::vector<std::string>& command :
         {std::vector<std::string>{"update-mime-database", share("mime")},
          std::vector<std::string>{"update-desktop-database", share("applications")}}) {
      const Finished updated = run(command, desktop());
      EXPECT_TRUE(updated.status.succeeded()) << updated.error;
    }
  }

  std::string typeOf(const std::string& path) {
    const std::string attribute = "standard::content-type";
    const std::string info = run({"gio", "info", "-a", attribute, path}, desktop()).output;
    const std::size_t at = info.find(attribute + ": ");
    return at == std::string::npos ? info
                                   : info.substr(at + attribute.size() + 2,
                                                 info.find('\n', at) - at - attribute.size() - 2);
  }

  support::TemporaryFolder home_;
};

TEST_F(Installation, EntryIsValid) {
  EXPECT_EQ(complaintsOf({"desktop-file-validate", share("applications/" + kId + ".desktop")}), "");
}

TEST_F(Installation, EntryStartsTheProgramAndShowsItsIcon) {
  const auto entry = lines(contentOf(share("applications/" + kId + ".desktop")));
  for (const std::string line :
       {"Exec=orvo %F", "Exec=orvo", "[Desktop Action new-recording]", "Actions=new-recording;"}) {
    EXPECT_THAT(entry, testing::Contains(line));
  }
  EXPECT_THAT(entry, testing::Contains("Icon=" + kId));
}

// What is left is named here: there is no homepage to name before there is a public address, ids of
// programs usually end in the program's name as it is written, and the way to name the developers
// that both AppStream 0.16 and 1.0 read is the older one.
TEST_F(Installation, MetainfoIsValid) {
  const std::vector<std::string> known{"url-homepage-missing", "cid-contains-uppercase-letter",
                                       "developer-name-tag-deprecated", "developer-info-missing"};
  const Finished checked = run({"appstreamcli", "validate", "--no-net", "--pedantic", "--no-color",
                                share("metainfo/" + kId + ".metainfo.xml")});
  EXPECT_THAT(checked.output, HasSubstr("Validation ")) << checked.error;
  for (const std::string& line : lines(checked.output)) {
    const bool isHint = line.size() > 2 && line[1] == ':' && line[2] == ' ';
    EXPECT_TRUE(!isHint || std::any_of(known.begin(), known.end(), [&line](const auto& hint) {
      return line.find(hint) != std::string::npos;
    })) << line;
  }
}

TEST_F(Installation, MetainfoNamesThisVersionFirst) {
  const std::string text = contentOf(share("metainfo/" + kId + ".metainfo.xml"));
  const std::size_t first = text.find("<release ");
  ASSERT_NE(first, std::string::npos);
  EXPECT_THAT(text.substr(first, 40), HasSubstr("version=\"" ORVO_VERSION "\""));
  EXPECT_THAT(text, Not(HasSubstr("@")));
}

TEST_F(Installation, EveryKindOfFileIsOpenedByTheProgram) {
  register_();
  for (const char* const kind : {"caf", "aif", "aiff", "wav", "mp3", "mp4", "m4a", "m4r", "aac"}) {
    const std::string path = home_.file(std::string("empty.") + kind);
    std::ofstream(path) << "  ";
    const std::string type = typeOf(path);
    EXPECT_THAT(run({"gio", "mime", type}, desktop()).output, HasSubstr(kId + ".desktop"))
        << kind << " is " << type;
  }
}

TEST_F(Installation, CafIsKnownByItsNameAndByItsContent) {
  register_();
  std::ofstream(home_.file("empty.CAF")) << "  ";
  EXPECT_EQ(typeOf(home_.file("empty.CAF")), "audio/x-caf");
  std::ofstream(home_.file("no suffix")) << std::string("caff\0\1\0\0desc", 12);
  EXPECT_EQ(typeOf(home_.file("no suffix")), "audio/x-caf");
  std::ofstream(home_.file("text")) << "caffeine is no sound";
  EXPECT_EQ(typeOf(home_.file("text")), "text/plain");
}

TEST_F(Installation, IconsHaveTheSizesOfTheirFolders) {
  for (const int size : {16, 22, 24, 32, 48, 64, 128, 256, 512}) {
    const std::string side = std::to_string(size);
    const std::string png =
        contentOf(share("icons/hicolor/" + side + "x" + side + "/apps/" + kId + ".png"));
    ASSERT_GT(png.size(), 24U) << size;
    EXPECT_EQ(png.substr(1, 3), "PNG");
    for (const std::size_t at : {18U, 22U}) {  // the low bytes of width and height
      EXPECT_EQ(256 * static_cast<unsigned char>(png[at]) + static_cast<unsigned char>(png[at + 1]),
                size);
    }
  }
  for (const std::string& name :
       {"scalable/apps/" + kId + ".svg", "symbolic/apps/" + kId + "-symbolic.svg"}) {
    EXPECT_EQ(complaintsOf({"xmllint", "--noout", share("icons/hicolor/" + name)}), "");
  }
}

TEST_F(Installation, LicenceComesWithIt) {
  std::ifstream licence(share("licenses/orvo/LICENSE"));
  std::string first;
  EXPECT_TRUE(std::getline(licence, first));
  EXPECT_EQ(first, "MIT License");
}

TEST_F(Installation, ManualPageIsWithoutFault) {
  EXPECT_EQ(complaintsOf({"mandoc", "-T", "lint", "-W", "all", share("man/man1/orvo.1")}), "");
}

TEST_F(Installation, ManualPageShowsTheOptions) {
  const std::string page =
      complaintsOf({"mandoc", "-T", "ascii", "-O", "width=100", share("man/man1/orvo.1")});
  EXPECT_THAT(page, HasSubstr("TMPDIR"));
  EXPECT_THAT(page, ContainsRegex("Prints the version\\."));
}

TEST_F(Installation, XmlIsWellFormed) {
  for (const std::string& name :
       {"mime/packages/" + kId + ".xml", "metainfo/" + kId + ".metainfo.xml"}) {
    EXPECT_EQ(complaintsOf({"xmllint", "--noout", share(name)}), "");
  }
}

TEST_F(Installation, EveryHelpPageIsThereWithWhatItLinks) {
  std::size_t pages = 0;
  for (const auto& folder : fs::directory_iterator(ORVO_REPOSITORY "/resources/help")) {
    if (!folder.is_directory()) {
      continue;
    }
    const std::string page =
        share("orvo/help/" + folder.path().filename().string() + "/index.html");
    ASSERT_TRUE(fs::exists(page)) << page;
    ++pages;
    const std::string text = contentOf(page);
    for (const std::string link : {"href=\"", "src=\""}) {
      for (std::size_t at = text.find(link); at != std::string::npos;
           at = text.find(link, at + 1)) {
        const std::size_t begin = at + link.size();
        const std::string target = text.substr(begin, text.find('"', begin) - begin);
        if (target[0] != '#') {
          EXPECT_TRUE(fs::exists(fs::path(page).parent_path() / target)) << page << " " << target;
        }
      }
    }
  }
  EXPECT_EQ(pages, 6U);
}

TEST_F(Installation, NothingRefersToTheFolderOfTheBuildOrOfTheInstallation) {
  for (const auto& entry : fs::recursive_directory_iterator(at(""))) {
    if (!entry.is_regular_file() || entry.path().string().find("/share/") == std::string::npos) {
      continue;
    }
    EXPECT_THAT(contentOf(entry.path()), Not(HasSubstr(ORVO_REPOSITORY))) << entry.path();
  }
  for (const std::string& file : {program(), at(ORVO_INSTALLED_LIBRARIES "/orvo/orvo-ffmpeg.so"),
                                  at(ORVO_INSTALLED_LIBRARIES "/orvo/orvo-cubeb.so"),
                                  at(ORVO_INSTALLED_LIBRARIES "/orvo/orvo-keeper")}) {
    const std::string dynamic = complaintsOf({"readelf", "-d", "-W", file});
    for (const std::string& line : lines(dynamic)) {
      const std::size_t path = line.find("path: [");
      EXPECT_TRUE(path == std::string::npos || line[path + 7] == '$') << file << line;
    }
  }
}

TEST_F(Installation, ModulesNeedTheLibrariesThatTheyLoadLate) {
  EXPECT_THAT(
      complaintsOf({"readelf", "-d", "-W", at(ORVO_INSTALLED_LIBRARIES "/orvo/orvo-ffmpeg.so")}),
      AllOf(HasSubstr("[libavformat.so"), HasSubstr("[libavcodec.so"),
            HasSubstr("[libswresample.so"), HasSubstr("[libavutil.so")));
  EXPECT_THAT(
      complaintsOf({"readelf", "-d", "-W", at(ORVO_INSTALLED_LIBRARIES "/orvo/orvo-cubeb.so")}),
      HasSubstr("[libcubeb.so"));
}

// It survives what takes the program down.
TEST_F(Installation, KeeperNeedsTheStandardLibraryOnly) {
  const std::string dynamic =
      complaintsOf({"readelf", "-d", "-W", at(ORVO_INSTALLED_LIBRARIES "/orvo/orvo-keeper")});
  std::size_t needed = 0;
  for (const std::string& line : lines(dynamic)) {
    if (line.find("(NEEDED)") != std::string::npos) {
      ++needed;
      EXPECT_THAT(line, ContainsRegex("\\[(libstdc\\+\\+|libgcc_s|libm|libc|ld-linux[^]]*)\\.so"));
    }
  }
  EXPECT_GT(needed, 0U);
}

TEST_F(Installation, MovedProgramAnswers) {
  EXPECT_EQ(run({program(), "--version"}).output, "Orvo " ORVO_VERSION "\n");
}

}  // namespace
