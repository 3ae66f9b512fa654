#include "platform/desktop/GLibRecentDocuments.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <regex>
#include <string>
#include <vector>

#include <QByteArray>

#include "platform/desktop/FileUri.h"
#include "support/TemporaryFolder.h"
#include "support/fakes/RecordingServices.h"

namespace {

using platform::fileUriOf;
using platform::GLibRecentDocuments;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
namespace fs = std::filesystem;

constexpr uid_t kNobody = 65534;
const std::string kHead =
    "<xbel version='1.0' xmlns:bookmark='http://www.freedesktop.org/standards/desktop-bookmarks'"
    " xmlns:mime='http://www.freedesktop.org/standards/shared-mime-info'>";

void put(const std::string& path, const std::string& text) {
  std::ofstream(path, std::ios::binary) << text;
}

std::string contentsOf(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

unsigned permissionsOf(const std::string& path) {
  struct stat status = {};
  EXPECT_EQ(::stat(path.c_str(), &status), 0) << path;
  return status.st_mode & 07777;
}

std::string mimeTypeOf(const std::string& path) {
  const std::string suffix = fs::path(path).extension().string();
  return suffix == ".wav" ? "audio/x-wav" : suffix.empty() || suffix == ".txt" ? "" : "audio/mpeg";
}

std::size_t occurrences(const std::string& text, const std::string& part) {
  std::size_t count = 0;
  for (auto at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) {
    ++count;
  }
  return count;
}

// Without the line breaks and blanks between elements.
std::string withoutLayout(const std::string& text) {
  return std::regex_replace(text, std::regex(">\\s+<"), "><");
}

// The tags, each with the text after it.
std::vector<std::string> elementsOf(const std::string& text) {
  const std::regex element("<[^/][^>]*>[^<]*");
  return {std::sregex_token_iterator(text.begin(), text.end(), element),
          std::sregex_token_iterator()};
}

class GLibRecentDocumentsTest : public testing::Test {
 protected:
  ~GLibRecentDocumentsTest() override {
    if (dropped_) {
      EXPECT_EQ(::seteuid(0), 0);
    }
  }

  std::string at(const std::string& name) const { return folder_.file(name); }

  std::string audioFile(const std::string& name) const {
    put(at(name), "audio");
    return at(name);
  }

  std::vector<std::string> recent(std::size_t most = 100) const {
    return documents_.recentDocuments(most);
  }

  // An entry of another program, registered as `application`.
  std::string entry(const std::string& path, const std::string& application,
                    const std::string& time, const std::string& more = "") const {
    return "<bookmark href=\"" + fileUriOf(path) +
           "\"><info><metadata owner='http://freedesktop.org'><bookmark:applications>"
           "<bookmark:application name='" +
           application + "' exec='x' modified='" + time + "' count='1'/></bookmark:applications>" +
           more + "</metadata></info></bookmark>";
  }

  // Expects that noting a document leaves the list unchanged and logs one line.
  void expectLeftAlone(const std::string& text) {
    put(list_, text);
    log_->clear();
    documents_.noteNewRecentDocument(at("a.wav"));
    EXPECT_TRUE(contentsOf(list_) == text) << contentsOf(list_).substr(0, 1000);
    EXPECT_EQ(log_->consoleLines().size(), 1U);
    EXPECT_THAT(recent(), IsEmpty());
    EXPECT_EQ(filesInFolder(), 1U);
  }

  std::size_t filesInFolder() const {
    return static_cast<std::size_t>(
        std::distance(fs::directory_iterator(folder_.path()), fs::directory_iterator()));
  }

  support::InstalledRecordingServices log_;
  support::TemporaryFolder folder_;
  const std::string list_ = folder_.file("recently-used.xbel");
  std::chrono::system_clock::time_point now_{std::chrono::seconds(1'700'000'000)};
  std::function<void()> meanwhile_;  // another program's action between reading and writing
  GLibRecentDocuments documents_{list_, mimeTypeOf, [this] {
                                   if (meanwhile_) {
                                     meanwhile_();
                                   }
                                   now_ += std::chrono::microseconds(1);
                                   return now_;
                                 }};
  bool dropped_ = false;
};

TEST_F(GLibRecentDocumentsTest, AreNoneWithoutAList) {
  EXPECT_THAT(recent(), IsEmpty());
  EXPECT_THAT(log_->consoleLines(), IsEmpty());
}

TEST_F(GLibRecentDocumentsTest, ComeBackTheLatestFirst) {
  for (const char* name : {"a.wav", "b.mp3", "c.caf", "a.wav"}) {
    documents_.noteNewRecentDocument(audioFile(name));
  }
  EXPECT_THAT(recent(), ElementsAre(at("a.wav"), at("c.caf"), at("b.mp3")));
  EXPECT_THAT(recent(2), ElementsAre(at("a.wav"), at("c.caf")));
  EXPECT_THAT(recent(0), IsEmpty());
  EXPECT_THAT(log_->consoleLines(), IsEmpty());
}

TEST_F(GLibRecentDocumentsTest, AreThoseThatStillExistAsFiles) {
  for (const char* name : {"a.wav", "b.wav", "c.wav", "d.wav"}) {
    documents_.noteNewRecentDocument(audioFile(name));
  }
  fs::remove(at("d.wav"));
  fs::remove(at("b.wav"));
  fs::create_directory(at("b.wav"));
  EXPECT_THAT(recent(2), ElementsAre(at("c.wav"), at("a.wav")));
}

TEST_F(GLibRecentDocumentsTest, AreThoseThatHaveAMimeType) {
  for (const char* name : {"a.wav", "b.txt", "c.mp3"}) {
    documents_.noteNewRecentDocument(audioFile(name));
  }
  EXPECT_THAT(recent(), ElementsAre(at("c.mp3"), at("a.wav")));
}

TEST_F(GLibRecentDocumentsTest, AreRegisteredForOtherProgramsWithTypeCommandAndTimes) {
  documents_.noteNewRecentDocument(at("a.wav"));
  const std::string now = "\"2023-11-14T22:13:20.000001Z\"";
  const std::string text = contentsOf(list_);
  EXPECT_THAT(text, HasSubstr("<bookmark href=\"" + fileUriOf(at("a.wav")) + "\" added=" + now +
                              " modified=" + now + " visited=" + now + ">"));
  EXPECT_THAT(text, HasSubstr("<mime:mime-type type=\"audio/x-wav\"/>"));
  EXPECT_THAT(text, HasSubstr("<bookmark:application name=\"Orvo\" exec=\"&apos;orvo %u&apos;\""
                              " modified=" +
                              now + " count=\"1\"/>"));
  documents_.noteNewRecentDocument(at("b.txt"));
  EXPECT_THAT(contentsOf(list_), HasSubstr("<mime:mime-type type=\"application/octet-stream\"/>"));
}

TEST_F(GLibRecentDocumentsTest, CountHowOftenADocumentWasOpened) {
  const std::string path = audioFile("a.wav");
  put(list_, kHead + entry(path, "Orvo", "2020-01-01T00:00:00Z") + "</xbel>");
  documents_.noteNewRecentDocument(path);
  EXPECT_THAT(contentsOf(list_),
              HasSubstr("modified=\"2023-11-14T22:13:20.000001Z\" count=\"2\"/>"));
}

TEST_F(GLibRecentDocumentsTest, KnowAFileHoweverItsUriIsWritten) {
  const std::string path = audioFile("a(b).wav");
  std::string text = entry(path, "Other", "2020-01-01T00:00:00Z");
  text.replace(text.find("file://"), 7, "file://localhost");
  text.replace(text.find("a(b)"), 4, "%61%28b)");
  put(list_, kHead + text + "</xbel>");
  documents_.noteNewRecentDocument(path);
  EXPECT_THAT(recent(), ElementsAre(path));
  EXPECT_EQ(occurrences(contentsOf(list_), "<bookmark href="), 1U);
}

TEST_F(GLibRecentDocumentsTest, KeepEverythingThatOtherProgramsRegistered) {
  const std::string theirs =
      "<title>List</title><desc>All</desc><bookmark href=\"file:///their%20%E5%BD%95\""
      " added=\"2019-01-01T00:00:00Z\" modified=\"2019-01-02T00:00:00Z\""
      " visited=\"2019-01-03T00:00:00Z\"><title>A &amp; B</title><desc>D</desc><info>"
      "<metadata owner=\"http://freedesktop.org\"><mime:mime-type type=\"image/png\"/>"
      "<bookmark:groups><bookmark:group>Graphics</bookmark:group></bookmark:groups>"
      "<bookmark:applications><bookmark:application name=\"Other\""
      " exec=\"&apos;other --open %f&apos;\" modified=\"2019-01-02T03:04:05Z\" count=\"4\"/>"
      "<bookmark:application name=\"Third\" exec=\"&apos;third %u&apos;\" modified="
      "\"2019-01-02T03:04:06Z\" count=\"1\"/></bookmark:applications><bookmark:icon href="
      "\"file:///icon\" type=\"image/png\"/><bookmark:private/></metadata></info></bookmark>"
      "<bookmark href=\"https://example.org/?a=b&amp;c\" added=\"2019-01-01T00:00:00Z\" modified="
      "\"2019-01-02T00:00:00Z\" visited=\"2019-01-03T00:00:00Z\"><info><metadata owner="
      "\"http://freedesktop.org\"><bookmark:applications><bookmark:application name=\"Other\""
      " exec=\"&apos;other %u&apos;\" modified=\"2019-01-02T03:04:05Z\" count=\"1\"/>"
      "</bookmark:applications></metadata></info></bookmark>";
  put(list_, kHead + theirs + "</xbel>");
  documents_.noteNewRecentDocument(audioFile("a.wav"));
  EXPECT_THAT(recent(), ElementsAre(at("a.wav")));
  const std::string text = withoutLayout(contentsOf(list_));
  for (const std::string& element : elementsOf(theirs)) {
    EXPECT_GE(occurrences(text, element), occurrences(theirs, element)) << element;
  }
}

TEST_F(GLibRecentDocumentsTest, KeepEntriesThatNoProgramRegistered) {
  const std::string visited = "visited=\"2019-01-03T00:00:00Z\"";
  const std::string modified = "modified=\"2019-01-02T00:00:00Z\"";
  put(list_, kHead + "<bookmark href='file:///theirs' added='2019-01-01T00:00:00Z' " + modified +
                 ' ' + visited + "><title>T</title></bookmark></xbel>");
  documents_.noteNewRecentDocument(audioFile("a.wav"));
  const std::string text = contentsOf(list_);
  EXPECT_THAT(text, HasSubstr("<bookmark href=\"file:///theirs\" added=\"2019-01-01T00:00:00Z\" " +
                              modified + ' ' + visited));
  EXPECT_THAT(text, HasSubstr("<title>T</title>"));
  EXPECT_THAT(recent(), ElementsAre(at("a.wav")));
}

TEST_F(GLibRecentDocumentsTest, LeaveAListWithUnknownElementsAsItIs) {
  const std::string theirs = entry("/theirs", "Other", "2020-01-01T00:00:00Z");
  expectLeftAlone(kHead + "<folder>" + theirs + "</folder></xbel>");
  expectLeftAlone(kHead + theirs + "<own:thing xmlns:own='urn:own'/></xbel>");
  expectLeftAlone(
      kHead +
      entry("/theirs", "Other", "2020-01-01T00:00:00Z", "<own:thing xmlns:own='urn:own'/>") +
      "</xbel>");
}

TEST_F(GLibRecentDocumentsTest, AreOnlyThoseThatWeRegistered) {
  const std::string ours = audioFile("ours.wav");
  const std::string theirs = audioFile("theirs.wav");
  const std::string secret = audioFile("secret.wav");
  const std::string list = kHead + entry(ours, "Orvo", "2020-01-01T00:00:00Z") +
                           entry(theirs, "Other", "2020-01-01T00:00:00Z") +
                           entry(secret, "Other", "2020-01-01T00:00:00Z", "<bookmark:private/>") +
                           "</xbel>";
  put(list_, list);
  EXPECT_THAT(recent(), ElementsAre(ours));
  documents_.noteNewRecentDocument(secret);
  EXPECT_THAT(recent(), ElementsAre(secret, ours));
  EXPECT_THAT(contentsOf(list_), HasSubstr("<bookmark:private/>"));
}

TEST_F(GLibRecentDocumentsTest, AreOrderedByOurOwnTimeWhereverTheyStand) {
  put(list_, kHead + entry(audioFile("b.wav"), "Orvo", "2020-01-01T00:00:00.5Z") +
                 entry(audioFile("a.wav"), "Orvo", "2020-01-01T00:00:00.500001Z") +
                 entry(audioFile("c.wav"), "Orvo", "2020-01-01T01:00:00+01:00") + "</xbel>");
  EXPECT_THAT(recent(), ElementsAre(at("a.wav"), at("b.wav"), at("c.wav")));
}

TEST_F(GLibRecentDocumentsTest, TakeNamesOfEveryKind) {
  std::vector<std::string> paths;
  for (const std::string& name :
       {std::string("two\nlines.wav"), std::string("100%25 %n.wav"), std::string("a&b;c.wav"),
        std::string("'\"<>.wav"), std::string("\xE5\xBD\x95\xE9\x9F\xB3 \xD7\xA9.wav"),
        std::string("caf\xE9.wav"), std::string(" .wav"), std::string("#1?.wav"),
        std::string(251, '\xFF') + ".wav"}) {
    paths.insert(paths.begin(), audioFile(name));
    documents_.noteNewRecentDocument(paths.front());
  }
  EXPECT_EQ(recent(), paths);
}

TEST_F(GLibRecentDocumentsTest, MakeRelativePathsAbsolute) {
  folder_.makeFolder("here");
  folder_.makeFolder("there");
  folder_.makeFolder("there/inner");
  fs::create_directory_symlink("../there/inner", at("here/link"));
  for (const char* name : {"here/a.wav", "b.wav", "there/c.wav", "here/d.wav"}) {
    audioFile(name);
  }
  const fs::path before = fs::current_path();
  fs::current_path(at("here"));
  for (const char* path : {"./d.wav", "link/../c.wav", "../b.wav", "a.wav"}) {
    documents_.noteNewRecentDocument(path);
  }
  fs::current_path(before);
  EXPECT_THAT(recent(),
              ElementsAre(at("here/a.wav"), at("b.wav"), at("there/c.wav"), at("here/d.wav")));
}

TEST_F(GLibRecentDocumentsTest, KeepAPathThroughALinkAsItIs) {
  folder_.makeFolder("real");
  fs::create_directory_symlink("real", at("link"));
  audioFile("real/a.wav");
  documents_.noteNewRecentDocument(at("link/a.wav"));
  EXPECT_THAT(recent(), ElementsAre(at("link/a.wav")));
}

TEST_F(GLibRecentDocumentsTest, IgnoreWhatIsNoPath) {
  documents_.noteNewRecentDocument("");
  documents_.noteNewRecentDocument(std::string("/a\0.wav", 7));
  EXPECT_FALSE(fs::exists(list_));
}

TEST_F(GLibRecentDocumentsTest, MakeAMissingListAndItsFoldersForTheUserAlone) {
  const std::string file = at("data/share/recently-used.xbel");
  const mode_t mask = ::umask(0);
  GLibRecentDocuments documents(file, mimeTypeOf);
  documents.noteNewRecentDocument(audioFile("a.wav"));
  ::umask(mask);
  EXPECT_THAT(documents.recentDocuments(9), ElementsAre(at("a.wav")));
  EXPECT_EQ(permissionsOf(file), 0600U);
  EXPECT_EQ(permissionsOf(at("data")), 0700U);
  EXPECT_EQ(permissionsOf(at("data/share")), 0700U);
}

TEST_F(GLibRecentDocumentsTest, KeepTheListsPermissions) {
  for (const mode_t mode : {0600U, 0640U}) {
    put(list_, "<xbel version='1.0'/>");
    ASSERT_EQ(::chmod(list_.c_str(), mode), 0);
    documents_.noteNewRecentDocument(at("a.wav"));
    EXPECT_EQ(permissionsOf(list_), mode);
    EXPECT_NE(contentsOf(list_), "<xbel version='1.0'/>");
  }
}

TEST_F(GLibRecentDocumentsTest, WriteThroughALinkAndKeepIt) {
  folder_.makeFolder("elsewhere");
  for (const bool exists : {true, false}) {
    fs::remove(at("elsewhere/list"));
    if (exists) {
      put(at("elsewhere/list"), "<xbel version='1.0'/>");
    }
    fs::remove(list_);
    fs::create_symlink("elsewhere/list", list_);
    documents_.noteNewRecentDocument(audioFile("a.wav"));
    EXPECT_TRUE(fs::is_symlink(list_));
    EXPECT_THAT(contentsOf(at("elsewhere/list")), HasSubstr("Orvo"));
    EXPECT_THAT(recent(), ElementsAre(at("a.wav")));
  }
}

TEST_F(GLibRecentDocumentsTest, TakeAnEmptyFileForAnEmptyList) {
  put(list_, "");
  documents_.noteNewRecentDocument(audioFile("a.wav"));
  EXPECT_THAT(recent(), ElementsAre(at("a.wav")));
}

TEST_F(GLibRecentDocumentsTest, LeaveAListThatCannotBeReadAsItIs) {
  expectLeftAlone("<xbel><bookmark href='file:///a.wav'>");
  expectLeftAlone("<html></html>");
  expectLeftAlone(" ");
  expectLeftAlone(std::string(4096, '\0'));
  expectLeftAlone(kHead + "</xbel>\xFF");
  expectLeftAlone(kHead + entry("/theirs", "Other", "yesterday") + "</xbel>");
}

// GLib writes the name of a kind as it is, ampersand and all, reads a line break as a blank, and
// leaves out a program without a count.
TEST_F(GLibRecentDocumentsTest, LeaveAListThatWouldLoseSomethingAsItIs) {
  expectLeftAlone(kHead +
                  entry("/theirs", "Other", "2020-01-01T00:00:00Z",
                        "<mime:mime-type type='audio/x-&amp;wav'/>") +
                  "</xbel>");
  std::string never = kHead + entry("/theirs", "Other", "2020-01-01T00:00:00Z") + "</xbel>";
  never.replace(never.find("count='1'"), 9, "count='0'");
  expectLeftAlone(never);
  expectLeftAlone(kHead + entry("/theirs", "One&#10;line", "2020-01-01T00:00:00Z") + "</xbel>");
}

TEST_F(GLibRecentDocumentsTest, LeaveAListThatIsTooLongAsItIs) {
  const std::string end = "</title></xbel>";
  std::string text = kHead + "<title>";
  text.resize(GLibRecentDocuments::kMaxList - end.size(), 'x');
  expectLeftAlone(text + end);  // would be too long with one more entry
  expectLeftAlone(text + 'x' + end);
  ASSERT_EQ(::truncate(list_.c_str(), off_t{1} << 40), 0);
  log_->clear();
  documents_.noteNewRecentDocument(at("a.wav"));
  EXPECT_EQ(fs::file_size(list_), std::uintmax_t{1} << 40);
  EXPECT_EQ(log_->consoleLines().size(), 1U);
  EXPECT_THAT(recent(), IsEmpty());
}

TEST_F(GLibRecentDocumentsTest, DoNotWaitForAPipeNorMindAFolderOrADevice) {
  ASSERT_EQ(::mkfifo(list_.c_str(), 0600), 0);
  documents_.noteNewRecentDocument(at("a.wav"));
  EXPECT_THAT(recent(), IsEmpty());
  EXPECT_TRUE(fs::is_fifo(list_));
  fs::remove(list_);
  fs::create_directory(list_);
  documents_.noteNewRecentDocument(at("a.wav"));
  EXPECT_THAT(recent(), IsEmpty());
  EXPECT_TRUE(fs::is_directory(list_));
  fs::remove(list_);
  fs::create_symlink("/dev/null", list_);
  documents_.noteNewRecentDocument(at("a.wav"));
  EXPECT_THAT(recent(), IsEmpty());
  EXPECT_EQ(log_->consoleLines().size(), 3U);
  EXPECT_EQ(filesInFolder(), 1U);
}

TEST_F(GLibRecentDocumentsTest, TellWhenTheListMayNotBeWritten) {
  put(list_, "<xbel version='1.0'/>");
  ASSERT_EQ(::chmod(list_.c_str(), 0444), 0);
  ASSERT_EQ(::chmod(folder_.path().c_str(), 0777), 0);
  if (::geteuid() == 0) {
    ASSERT_EQ(::seteuid(kNobody), 0);
    dropped_ = true;
  }
  documents_.noteNewRecentDocument(at("a.wav"));
  EXPECT_EQ(contentsOf(list_), "<xbel version='1.0'/>");
  EXPECT_EQ(log_->consoleLinesWith("You do not have the permission for it."), 1U);
}

TEST_F(GLibRecentDocumentsTest, TellWhenAFileStandsInTheFoldersPlace) {
  GLibRecentDocuments documents(audioFile("a.wav") + "/recently-used.xbel", mimeTypeOf);
  documents.noteNewRecentDocument(at("a.wav"));
  EXPECT_THAT(documents.recentDocuments(9), IsEmpty());
  EXPECT_EQ(log_->consoleLines().size(), 1U);
  EXPECT_EQ(contentsOf(at("a.wav")), "audio");
}

TEST_F(GLibRecentDocumentsTest, KeepWhatAnotherProgramWritesMeanwhile) {
  const std::string theirs = entry(audioFile("theirs.wav"), "Other", "2020-01-01T00:00:00Z");
  for (const std::string before : {"", "<xbel version='1.0'/>"}) {
    fs::remove(list_);
    if (!before.empty()) {
      put(list_, before);
    }
    meanwhile_ = [&] {
      put(list_, kHead + theirs + "</xbel>");
      meanwhile_ = nullptr;
    };
    documents_.noteNewRecentDocument(audioFile("a.wav"));
    EXPECT_THAT(contentsOf(list_), HasSubstr(fileUriOf(at("theirs.wav"))));
    EXPECT_THAT(contentsOf(list_), HasSubstr("name=\"Other\" exec=\"x\""));
    EXPECT_THAT(recent(), ElementsAre(at("a.wav")));
  }
  EXPECT_THAT(log_->consoleLines(), IsEmpty());
}

TEST_F(GLibRecentDocumentsTest, LeaveAListThatBreaksMeanwhileAsItIs) {
  put(list_, "<xbel version='1.0'/>");
  meanwhile_ = [this] { put(list_, "<xbel>"); };
  documents_.noteNewRecentDocument(at("a.wav"));
  EXPECT_EQ(contentsOf(list_), "<xbel>");
  EXPECT_EQ(log_->consoleLines().size(), 1U);
}

TEST_F(GLibRecentDocumentsTest, GiveUpWhenTheListNeverComesToRest) {
  int changes = 0;
  meanwhile_ = [&] { put(list_, "<xbel><title>" + std::to_string(++changes) + "</title></xbel>"); };
  documents_.noteNewRecentDocument(at("a.wav"));
  EXPECT_EQ(contentsOf(list_), "<xbel><title>" + std::to_string(changes) + "</title></xbel>");
  EXPECT_EQ(log_->consoleLines().size(), 1U);
  EXPECT_EQ(filesInFolder(), 1U);
}

TEST(GLibRecentDocumentsFileTest, DesktopFileLiesInTheUsersDataFolder) {
  const QByteArray before = qgetenv("XDG_DATA_HOME");
  const QByteArray home = qgetenv("HOME");
  qputenv("HOME", "/somebody");
  qputenv("XDG_DATA_HOME", "/data");
  EXPECT_EQ(GLibRecentDocuments::desktopFile(), "/data/recently-used.xbel");
  for (const char* unusable : {"", "data", "./data"}) {
    qputenv("XDG_DATA_HOME", unusable);
    EXPECT_EQ(GLibRecentDocuments::desktopFile(), "/somebody/.local/share/recently-used.xbel");
  }
  qunsetenv("XDG_DATA_HOME");
  EXPECT_EQ(GLibRecentDocuments::desktopFile(), "/somebody/.local/share/recently-used.xbel");
  qputenv("XDG_DATA_HOME", before);
  qputenv("HOME", home);
}

}  // namespace
