#include "support/programs/SessionManager.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <utility>

#include <poll.h>
#include <pthread.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <unistd.h>

#include <X11/SM/SMlib.h>

// Declared by no header: session managers declare it themselves.
extern "C" int _IceTransNoListen(const char* protocol);  // NOLINT(bugprone-reserved-identifier)

namespace support {

namespace {

constexpr int kErrorCapacity = 256;

bool isLocal(const std::string& address) {
  return address.starts_with("local/") || address.starts_with("unix/");
}

Bool acceptsHost(char* host) {
  return isLocal(host) ? True : False;
}

bool isOfThisUser(int socket) {
  ucred peer{};
  socklen_t size = sizeof(peer);
  return ::getsockopt(socket, SOL_SOCKET, SO_PEERCRED, &peer, &size) == 0 &&
         peer.uid == ::geteuid();
}

std::string stringOf(char* allocated) {
  const std::string text = allocated == nullptr ? "" : allocated;
  std::free(allocated);
  return text;
}

// The default ends the process: one that has gone is noticed where it is read from.
void goOnAfterError(IceConn) {}

}  // namespace

/// The connections of the session manager, and the library's calls. Threads: after start() that of
/// the session manager alone.
struct SessionManager::Protocol {
  explicit Protocol(SessionManager& manager) : owner(manager) {}
  ~Protocol();

  [[nodiscard]] bool listen(std::string& error);
  /// Returns once there is something to do, which may be a command.
  void serve(int wake);
  void accept(IceListenObj listener);
  void process(IceConn connection);
  void closeAll();

  static Status addClient(SmsConn client, SmPointer self, unsigned long* mask, SmsCallbacks* calls,
                          char** refusal);
  static Status registerClient(SmsConn client, SmPointer self, char* previousId);
  static void interactionDone(SmsConn client, SmPointer self, Bool cancels);
  static void saved(SmsConn client, SmPointer self, Bool success);
  static void closed(SmsConn client, SmPointer self, int count, char** reasons);
  static Protocol& of(SmPointer self) { return *static_cast<Protocol*>(self); }

  SessionManager& owner;
  int listenerCount = 0;
  IceListenObj* listeners = nullptr;
  std::vector<IceConn> connections;
  SmsConn client = nullptr;
  bool begins = false;  // the save that follows registration is still under way
};

// Setting up -------------------------------------------------------------------------------------

bool SessionManager::Protocol::listen(std::string& error) {
  std::array<char, kErrorCapacity> text{};
  std::array<char, 8> vendor{"Orvo"};
  std::array<char, 8> release{"1"};
  IceSetIOErrorHandler(goOnAfterError);
  _IceTransNoListen("tcp");
  if (SmsInitialize(vendor.data(), release.data(), addClient, this, acceptsHost, kErrorCapacity,
                    text.data()) == 0 ||
      IceListenForConnections(&listenerCount, &listeners, kErrorCapacity, text.data()) == 0) {
    error = std::string("There is no session manager: ") + text.data();
    return false;
  }
  for (int i = 0; i < listenerCount; ++i) {
    IceSetHostBasedAuthProc(listeners[i], acceptsHost);
  }
  return true;
}

SessionManager::Protocol::~Protocol() {
  closeAll();
}

void SessionManager::Protocol::closeAll() {
  for (IceConn const connection : connections) {
    ::shutdown(IceConnectionNumber(connection), SHUT_RDWR);  // not a word of farewell
  }
  if (client != nullptr) {
    SmsCleanUp(std::exchange(client, nullptr));
  }
  for (IceConn const connection : std::exchange(connections, {})) {
    IceSetShutdownNegotiation(connection, False);
    IceCloseConnection(connection);
  }
  if (listeners != nullptr) {
    IceFreeListenObjs(std::exchange(listenerCount, 0), std::exchange(listeners, nullptr));
  }
}

// The program ------------------------------------------------------------------------------------

Status SessionManager::Protocol::addClient(SmsConn, SmPointer self, unsigned long* mask,
                                           SmsCallbacks* calls, char**) {
  *mask = SmsRegisterClientProcMask | SmsInteractRequestProcMask | SmsInteractDoneProcMask |
          SmsSaveYourselfRequestProcMask | SmsSaveYourselfP2RequestProcMask |
          SmsSaveYourselfDoneProcMask | SmsCloseConnectionProcMask | SmsSetPropertiesProcMask |
          SmsDeletePropertiesProcMask | SmsGetPropertiesProcMask;
  calls->register_client = {registerClient, self};
  calls->interact_request = {
      [](SmsConn, SmPointer to, int) { of(to).owner.note(Event::interactionRequested); }, self};
  calls->interact_done = {interactionDone, self};
  calls->save_yourself_request = {[](SmsConn, SmPointer, int, Bool, int, Bool, Bool) {}, self};
  calls->save_yourself_phase2_request = {
      [](SmsConn peer, SmPointer) { SmsSaveYourselfPhase2(peer); }, self};
  calls->save_yourself_done = {saved, self};
  calls->close_connection = {closed, self};
  calls->set_properties = {[](SmsConn, SmPointer, int count, SmProp** properties) {
                             std::for_each(properties, properties + count, SmFreeProperty);
                             std::free(properties);
                           },
                           self};
  calls->delete_properties = {[](SmsConn, SmPointer, int count, char** names) {
                                std::for_each(names, names + count, std::free);
                                std::free(names);
                              },
                              self};
  calls->get_properties = {[](SmsConn peer, SmPointer) { SmsReturnProperties(peer, 0, nullptr); },
                           self};
  return 1;
}

// A program that was in no session before is asked to save at once.
Status SessionManager::Protocol::registerClient(SmsConn client, SmPointer self, char* previousId) {
  if (!stringOf(previousId).empty()) {
    return 0;  // no session is restored here; it comes again with none
  }
  std::array<char, 16> id{"the only client"};
  if (SmsRegisterClientReply(client, id.data()) == 0) {
    return 0;
  }
  of(self).client = client;
  of(self).begins = true;
  of(self).owner.note(Event::registered);
  SmsSaveYourself(client, SmSaveLocal, False, SmInteractStyleNone, False);
  return 1;
}

void SessionManager::Protocol::interactionDone(SmsConn, SmPointer self, Bool cancels) {
  of(self).owner.note(cancels != 0 ? Event::interactionDoneAndEndCancelled
                                   : Event::interactionDone);
}

void SessionManager::Protocol::saved(SmsConn client, SmPointer self, Bool success) {
  SessionManager& owner = of(self).owner;
  if (std::exchange(of(self).begins, false)) {
    SmsSaveComplete(client);
  }
  std::function<void()> call;
  {
    const std::lock_guard lock(owner.mutex_);
    call = owner.whenSaved_;
  }
  if (call && success != 0) {
    call();
  }
  owner.note(success != 0 ? Event::saved : Event::notSaved);
}

void SessionManager::Protocol::closed(SmsConn client, SmPointer self, int count, char** reasons) {
  Protocol& protocol = of(self);
  SmFreeReasons(count, reasons);
  IceConn const connection = SmsGetIceConnection(client);
  protocol.client = nullptr;
  std::erase(protocol.connections, connection);
  SmsCleanUp(client);
  IceSetShutdownNegotiation(connection, False);
  IceCloseConnection(connection);
  protocol.owner.note(Event::closed);
}

// The thread -------------------------------------------------------------------------------------

void SessionManager::Protocol::serve(int wake) {
  std::vector<pollfd> watched{{wake, POLLIN, 0}};
  for (int i = 0; i < listenerCount; ++i) {
    watched.push_back({IceGetListenConnectionNumber(listeners[i]), POLLIN, 0});
  }
  const auto open = connections;  // serving one changes them
  for (IceConn const connection : open) {
    watched.push_back({IceConnectionNumber(connection), POLLIN, 0});
  }
  if (::poll(watched.data(), watched.size(), -1) < 0) {
    return;
  }
  const std::size_t first = 1 + static_cast<std::size_t>(listenerCount);
  for (std::size_t i = 0; i < open.size(); ++i) {
    if (watched[first + i].revents != 0) {
      process(open[i]);
    }
  }
  for (int i = 0; i < listenerCount; ++i) {
    if (watched[1 + static_cast<std::size_t>(i)].revents != 0) {
      accept(listeners[i]);
    }
  }
}

void SessionManager::Protocol::accept(IceListenObj listener) {
  IceAcceptStatus status = IceAcceptFailure;
  IceConn const connection = IceAcceptConnection(listener, &status);
  if (connection == nullptr) {
    return;
  }
  if (!isOfThisUser(IceConnectionNumber(connection))) {
    IceCloseConnection(connection);
    return;
  }
  connections.push_back(connection);
}

void SessionManager::Protocol::process(IceConn connection) {
  if (IceProcessMessages(connection, nullptr, nullptr) != IceProcessMessagesIOError) {
    return;
  }
  std::erase(connections, connection);
  if (client != nullptr && SmsGetIceConnection(client) == connection) {
    SmsCleanUp(std::exchange(client, nullptr));
    owner.note(Event::closed);
  }
  IceSetShutdownNegotiation(connection, False);
  IceCloseConnection(connection);
}

void SessionManager::run() {
  sigset_t pipe;  // the program may go at any time
  sigemptyset(&pipe);
  sigaddset(&pipe, SIGPIPE);
  pthread_sigmask(SIG_BLOCK, &pipe, nullptr);
  while (performCommands()) {
    protocol_->serve(wake_);
  }
}

bool SessionManager::performCommands() {
  std::vector<std::function<void()>> commands;
  {
    const std::lock_guard lock(mutex_);
    std::uint64_t count = 0;
    static_cast<void>(::read(wake_, &count, sizeof(count)) == sizeof(count));
    commands = std::exchange(commands_, {});
  }
  for (const auto& command : commands) {
    command();
  }
  const std::lock_guard lock(mutex_);
  return !stops_;
}

void SessionManager::perform(std::function<void()> command) {
  const std::lock_guard lock(mutex_);
  commands_.push_back(std::move(command));
  const std::uint64_t one = 1;
  static_cast<void>(::write(wake_, &one, sizeof(one)) == sizeof(one));
}

// For the tests ----------------------------------------------------------------------------------

SessionManager::SessionManager()
    : wake_(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)),
      protocol_(std::make_unique<Protocol>(*this)) {}

std::unique_ptr<SessionManager> SessionManager::start(std::string& error) {
  std::unique_ptr<SessionManager> manager(new SessionManager);
  if (manager->wake_ < 0) {
    error = std::string("There is no session manager: ") + std::strerror(errno);
    return nullptr;
  }
  if (!manager->protocol_->listen(error)) {
    return nullptr;
  }
  for (int i = 0; i < manager->protocol_->listenerCount; ++i) {
    const std::string id = stringOf(IceGetListenConnectionString(manager->protocol_->listeners[i]));
    if (isLocal(id)) {
      manager->address_ += (manager->address_.empty() ? "" : ",") + id;
    }
  }
  manager->thread_ = std::thread([self = manager.get()] { self->run(); });
  return manager;
}

SessionManager::~SessionManager() {
  vanish();
  protocol_.reset();
  if (wake_ >= 0) {
    ::close(wake_);
  }
}

void SessionManager::vanish() {
  if (thread_.joinable()) {
    perform([this] {
      protocol_->closeAll();
      const std::lock_guard lock(mutex_);
      stops_ = true;
    });
    thread_.join();
  }
}

Environment SessionManager::environment() const {
  return {{"SESSION_MANAGER", address_}};
}

SessionManager::Events SessionManager::events() const {
  const std::lock_guard lock(mutex_);
  return events_;
}

bool SessionManager::waitFor(const Events& events) const {
  return eventually([&] { return this->events() == events; });
}

void SessionManager::whenSaved(std::function<void()> call) {
  const std::lock_guard lock(mutex_);
  whenSaved_ = std::move(call);
}

void SessionManager::note(Event event) {
  const std::lock_guard lock(mutex_);
  events_.push_back(event);
}

void SessionManager::endSession() {
  perform([this] {
    if (protocol_->client != nullptr) {
      note(Event::askedToSave);
      SmsSaveYourself(protocol_->client, SmSaveBoth, True, SmInteractStyleAny, False);
    }
  });
}

void SessionManager::permitInteraction() {
  perform([this] {
    if (protocol_->client != nullptr) {
      note(Event::interactionPermitted);
      SmsInteract(protocol_->client);
    }
  });
}

void SessionManager::takeEndBack() {
  perform([this] {
    if (protocol_->client != nullptr) {
      note(Event::endTakenBack);
      SmsShutdownCancelled(protocol_->client);
    }
  });
}

void SessionManager::die() {
  perform([this] {
    if (protocol_->client != nullptr) {
      note(Event::toldToDie);
      SmsDie(protocol_->client);
    }
  });
}

void PrintTo(SessionManager::Event event, std::ostream* stream) {
  constexpr std::array kNames{"registered",
                              "asked to save",
                              "interaction requested",
                              "interaction permitted",
                              "interaction done",
                              "interaction done and end cancelled",
                              "saved",
                              "not saved",
                              "end taken back",
                              "told to die",
                              "closed"};
  *stream << kNames.at(static_cast<std::size_t>(event));
}

}  // namespace support
