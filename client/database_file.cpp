// SPDX-License-Identifier: BSD-3-Clause
// The signature, version and announced size in the first bytes of an HDF5 file.
#include "client/database_file.h"

#include <array>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <memory>
#include <system_error>

#include "base/bytes.h"
#include "base/text.h"
#include "port/port.h"

namespace odbs::client {

namespace {

// The first bytes of a file: the signature and the superblock of HDF5.
using Head = std::array<unsigned char, 64>;

constexpr std::string_view kSignature("\x89HDF\r\n\x1a\n", 8);

// The size that an HDF5 file with 8-byte offsets announces, or 0 when it is not known. Versions 0
// and 1 of the superblock have it at byte 40, versions 2 and 3 at byte 28 (HDF5 File Format
// Specification, II.A).
std::uint64_t announcedSize(const Head& head) {
  const unsigned version = head[8];
  const bool isOld = version < 2;
  if (version > 3 || head[isOld ? 13 : 9] != 8) return 0;
  // Version 1 has four bytes more ahead of the addresses.
  const std::size_t at = !isOld ? 28 : version == 0 ? 40 : 44;
  return getU32(head.data() + at) | std::uint64_t{getU32(head.data() + at + 4)} << 32;
}

bool isText(const Head& head, std::size_t n) {
  for (std::size_t i = 0; i < n; ++i) {
    if (head[i] < 0x20 && (head[i] < '\t' || head[i] > '\r')) return false;
  }
  return true;
}

std::string missingText(const std::string& path) {
  const std::filesystem::path folder = std::filesystem::path(path).parent_path();
  std::error_code error;
  if (!folder.empty() && !std::filesystem::exists(folder, error)) {
    return "there is no folder " + folder.string();
  }
  return "there is no such file";
}

}  // namespace

std::string whyNotOpened(const std::string& path) {
  if (path.empty()) return "the path is empty";
  std::error_code error;
  if (std::filesystem::is_directory(path, error)) return "it is a folder";
  const port::FileStatus status = port::fileStatus(path);
  if (!status.exists) return missingText(path);
  if (!status.isRegular) return "it is no ordinary file";
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(path.c_str(), "rb"),
                                                             &std::fclose);
  if (!file) return std::string("it cannot be read: ") + std::strerror(errno);
  Head head{};
  const std::size_t n = std::fread(head.data(), 1, head.size(), file.get());
  if (n == 0) return status.size == 0 ? "the file is empty" : "it cannot be read";
  const std::string_view start(reinterpret_cast<const char*>(head.data()), n);
  if (!startsWith(start, kSignature.substr(0, n))) {
    return std::string(isText(head, n) ? "it is a text file" : "it is not an HDF5 file") +
           ", and this server reads databases that odb_import or a program with the odb library "
           "wrote. Databases of the vendor's own library need a server that is built against the "
           "vendor's SDK (ODB_API=sdk), or odb_import on the deck that they came from";
  }
  if (n < head.size()) return "the file is cut: it ends in its header";
  const std::uint64_t announced = announcedSize(head);
  if (announced > static_cast<std::uint64_t>(status.size)) {
    return "the file is cut: it has " + std::to_string(status.size) + " of " +
           std::to_string(announced) + " bytes";
  }
  return "it is an HDF5 file, but damaged, of a newer release, or no output database";
}

}  // namespace odbs::client
