/// The connection handle of the event client: its locations and settings (filled from the
/// configuration), and the state of the open connection.
#pragma once

#include <netinet/in.h>

#include <array>
#include <cstdio>
#include <memory>
#include <string>

struct eipc_handle;

inline constexpr int kLocationsMax = 8;

struct zem_handle {
  // Filled by common_agent_handle_init.
  std::array<std::string, kLocationsMax> locations;  ///< host names or dotted addresses
  std::FILE* test_stream = nullptr;                  ///< where events go in test mode; owned
  int location_count = 0;
  int retry_interval_s = 0;
  bool flushing = false;  ///< the cache is being re-sent: no normalising, filtering, nested flush
  bool test_mode = false;
  bool unfiltered = false;  ///< zem_put_event applies no event filters

  int current = -1;                                  ///< location of the open connection, or -1
  std::array<in_addr_t, kLocationsMax> addresses{};  ///< network byte order
  std::array<in_port_t, kLocationsMax> ports{};      ///< network byte order; 0: not known
  std::array<bool, kLocationsMax> portGiven{};       ///< never asked of the port mapper
  int mode = 0;                                      ///< 1 connection-oriented, 0 connectionless
  eipc_handle* ipc = nullptr;                        ///< the open connection; owned
  int sentOnConnection = 0;                          ///< events sent on it
};
