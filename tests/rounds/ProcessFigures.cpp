#include "rounds/ProcessFigures.h"

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <iterator>
#include <memory>
#include <string>

#include <malloc.h>
#include <xcb/res.h>
#include <xcb/xcb.h>

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusReply>
#include <QVariantMap>

#include "support/ProcessMemory.h"
#include "support/ThreadCount.h"

namespace {

template <typename Reply>
using Allocated = std::unique_ptr<Reply, decltype(&std::free)>;

template <typename Reply>
Allocated<Reply> allocated(Reply* reply) {
  return {reply, &std::free};
}

std::size_t descriptorCount() {
  const std::filesystem::directory_iterator descriptors("/proc/self/fd");
  return static_cast<std::size_t>(std::distance(begin(descriptors), end(descriptors))) - 1;
}

// glibc tells, as XML, what it has of the system and what of that is free: for each of its arenas,
// and in the end for all of them.
std::uint64_t allocatedBytes() {
  char* text = nullptr;
  std::size_t size = 0;
  std::FILE* const stream = ::open_memstream(&text, &size);
  const bool isTold = ::malloc_info(0, stream) == 0;
  static_cast<void>(std::fclose(stream));
  const std::string told = isTold ? std::string(text, size) : std::string();
  std::free(text);  // NOLINT(cppcoreguidelines-no-malloc)
  const std::string total = told.substr(told.rfind("</heap>"));
  const auto sizeOf = [&total](const std::string& type) -> std::uint64_t {
    const auto element = total.find("type=\"" + type + "\"");
    const std::string key = "size=\"";
    const auto number = element == std::string::npos ? element : total.find(key, element);
    return number == std::string::npos ? 0 : std::stoull(total.substr(number + key.size()));
  };
  return sizeOf("current") + sizeOf("mmap") - sizeOf("fast") - sizeOf("rest");
}

// By a connection of its own, whose resources do not count.
bool countScreenResources(std::uint32_t window, ProcessFigures& figures) {
  const std::unique_ptr<xcb_connection_t, decltype(&xcb_disconnect)> screen(
      xcb_connect(nullptr, nullptr), &xcb_disconnect);
  const auto resources = allocated(xcb_res_query_client_resources_reply(
      screen.get(), xcb_res_query_client_resources(screen.get(), window), nullptr));
  const auto bytes = allocated(xcb_res_query_client_pixmap_bytes_reply(
      screen.get(), xcb_res_query_client_pixmap_bytes(screen.get(), window), nullptr));
  if (resources == nullptr || bytes == nullptr) {
    return false;
  }
  auto type = xcb_res_query_client_resources_types_iterator(resources.get());
  for (; type.rem > 0; xcb_res_type_next(&type)) {
    figures.screenResources += type.data->count;
  }
  figures.screenPictureBytes =
      (std::uint64_t{bytes->bytes_overflow} << 32U) + std::uint64_t{bytes->bytes};
  return true;
}

bool countBusMatches(ProcessFigures& figures) {
  const QDBusConnection bus = QDBusConnection::sessionBus();
  QDBusMessage question = QDBusMessage::createMethodCall(
      QStringLiteral("org.freedesktop.DBus"), QStringLiteral("/org/freedesktop/DBus"),
      QStringLiteral("org.freedesktop.DBus.Debug.Stats"), QStringLiteral("GetConnectionStats"));
  question << bus.baseService();
  const QDBusReply<QVariantMap> stats = bus.call(question);
  const auto key = QStringLiteral("MatchRules");
  if (!stats.isValid() || !stats.value().contains(key)) {
    return false;
  }
  figures.busMatches = stats.value().value(key).toULongLong();
  return true;
}

}  // namespace

std::optional<ProcessFigures> ProcessFigures::now(const QWindow& window) {
  ProcessFigures figures{.threads = support::threadCount(),
                         .descriptors = descriptorCount(),
                         .allocatedMemory = allocatedBytes(),
                         .residentMemory = support::residentMemory()};
  if (!countScreenResources(static_cast<std::uint32_t>(window.winId()), figures) ||
      !countBusMatches(figures)) {
    return std::nullopt;
  }
  return figures;
}
