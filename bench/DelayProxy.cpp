// A network between an engine and its database server: passes everything on, and lets each round trip take a while.
//
//   delay_proxy PORT MICROSECONDS
//
// Listens on a port of this machine alone, whose number it prints first, for clients of the server at PORT of this
// machine. What a client sends after the server has spoken begins a round trip and is passed on with the delay; what it
// sends on top belongs to the same one. Each line on the standard input is answered with the number of round trips so
// far. Ends with the standard input.

#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cstdint>
#include <cstdlib>
#include <ctime>
#include <iostream>
#include <string>
#include <thread>

#include "bench/Calls.h"

namespace {

std::atomic<std::int64_t> roundTrips = 0;

sockaddr_in Loopback(std::uint16_t port) {
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(port);
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  return address;
}

int NewSocket() {
  const int made = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  if (made < 0) Bench::Fail("no socket");
  return made;
}

void SendAtOnce(int connection) {
  const int on = 1;
  setsockopt(connection, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
}

/// Sleeps to the microsecond: the kernel's usual slack would be a fifth of the delay.
void Delay(std::int64_t microseconds) {
  prctl(PR_SET_TIMERSLACK, 1UL);
  timespec left{microseconds / 1000000, microseconds % 1000000 * 1000};
  while (nanosleep(&left, &left) != 0) {
  }
}

bool SendAll(int connection, const char* bytes, ssize_t length) {
  while (length > 0) {
    const ssize_t sent = send(connection, bytes, static_cast<std::size_t>(length), MSG_NOSIGNAL);
    if (sent <= 0) return false;
    bytes += sent;
    length -= sent;
  }
  return true;
}

/// Passes on what comes from one end until it ends; `before` runs ahead of each piece.
template <class Before>
void PassOn(int from, int to, Before before) {
  std::array<char, 65536> bytes{};
  for (;;) {
    const ssize_t length = recv(from, bytes.data(), bytes.size(), 0);
    if (length <= 0) break;
    before();
    if (!SendAll(to, bytes.data(), length)) break;
  }
  shutdown(to, SHUT_WR);
}

void Serve(int client, std::uint16_t serverPort, std::int64_t microseconds) {
  const int server = NewSocket();
  const sockaddr_in address = Loopback(serverPort);
  if (connect(server, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0) {
    SendAtOnce(server);
    SendAtOnce(client);
    std::atomic<bool> serverSpoke = false;
    std::thread answers([&] { PassOn(server, client, [&] { serverSpoke = true; }); });
    PassOn(client, server, [&] {
      if (!serverSpoke.exchange(false)) return;
      ++roundTrips;
      Delay(microseconds);
    });
    answers.join();
  }
  close(server);
  close(client);
}

int Listen() {
  const int listener = NewSocket();
  sockaddr_in address = Loopback(0);
  socklen_t length = sizeof address;
  if (bind(listener, reinterpret_cast<const sockaddr*>(&address), length) != 0 || listen(listener, SOMAXCONN) != 0 ||
      getsockname(listener, reinterpret_cast<sockaddr*>(&address), &length) != 0) {
    Bench::Fail("no port to listen on");
  }
  std::cout << ntohs(address.sin_port) << std::endl;
  return listener;
}

void AcceptAll(int listener, std::uint16_t serverPort, std::int64_t microseconds) {
  for (;;) {
    const int client = accept(listener, nullptr, nullptr);
    if (client >= 0) std::thread(Serve, client, serverPort, microseconds).detach();
  }
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) Bench::Fail("delay_proxy PORT MICROSECONDS");
  const auto serverPort = static_cast<std::uint16_t>(std::atoi(argv[1]));
  std::thread(AcceptAll, Listen(), serverPort, std::atoll(argv[2])).detach();
  for (std::string line; std::getline(std::cin, line);) std::cout << roundTrips << std::endl;
  // Threads still stand in their calls: nothing is there to be tidied up.
  std::_Exit(0);
}
