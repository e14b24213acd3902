/// The socket level of the event client: one TCP connection and the framed message on it.
#pragma once

#include <netinet/in.h>

struct eipc_handle;

/// Connects to address and port (network byte order); null on failure with `*err` 67 when the
/// server refused, else 38. Ends after 5 seconds at most.
eipc_handle* eipc_create_remote_client(in_addr_t address, in_port_t port, int* err);
/// Sends one framed message; 0, or -1 with `*err` 38. Nothing is sent for len < 1.
int eipc_send(eipc_handle* ipc, const char* data, int len, unsigned word2, unsigned word1,
              int* err);
void eipc_shutdown(eipc_handle* ipc);
void eipc_destroy_handle(eipc_handle* ipc);
/// SIGPIPE handler: installs itself again and does nothing else.
void catch_pipe(int signal);
