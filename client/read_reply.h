// SPDX-License-Identifier: BSD-3-Clause
// Reading a whole reply with a builder, and the records that replies about a database begin with.
// A builder has add(record), which takes the records in order, and finish(), which returns the
// reply and leaves the builder empty.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "client/connection.h"

namespace odbs::client {

struct ReplyHead {
  bool hasTitle = false;  // a title came, without which the database was not opened
  std::string title;
  std::int32_t analysisKind = -1;
  std::vector<std::string> messages;  // what the server sent while opening
};

// Takes a title, an analysis kind or a message. Returns false for every other record.
bool takeHead(const Record& record, ReplyHead& head);

// Throws MalformedRecord for a tag that the reply cannot have; `where`: such as "among values".
[[noreturn]] void failUnexpected(const Record& record, const char* where);

// Reads the reply in progress to its end.
template <typename Builder>
auto readReply(Connection& server, Builder builder) {
  for (Record record; server.next(record);) builder.add(record);
  return builder.finish();
}

// Returns the reply, or throws DatabaseNotOpened when it has no title.
template <typename Reply>
Reply requireOpened(const std::string& path, Reply reply) {
  if (!reply.hasTitle) throw DatabaseNotOpened(path, reply.messages);
  return reply;
}

}  // namespace odbs::client
