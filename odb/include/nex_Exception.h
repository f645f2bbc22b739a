// SPDX-License-Identifier: BSD-3-Clause
// What the library throws. Every failure is an odb_Exception, so that each of the names that
// programs catch (odb_BaseException, nex_Exception, odb_Exception, std::exception) gets it.
#pragma once

#include <odb_String.h>

#include <exception>

// A message, also as a C text.
class odb_ErrorMessage : public odb_String {
 public:
  explicit odb_ErrorMessage(const odb_String& message) : odb_String(message) {}
  const char* text() const { return CStr(); }
  operator const char*() const { return CStr(); }
};

class odb_BaseException : public std::exception {
 public:
  explicit odb_BaseException(const odb_String& message) : message_(message) {}
  // The whole message, for people. Both give the same.
  const odb_ErrorMessage& UserReport() const { return message_; }
  const odb_ErrorMessage& DeveloperReport() const { return message_; }
  const char* what() const noexcept override { return message_.CStr(); }

 private:
  odb_ErrorMessage message_;
};

class nex_Exception : public odb_BaseException {
 public:
  using odb_BaseException::odb_BaseException;
};

// Numbers that ErrorNo() gives.
enum odb_ErrorNumber {
  odb_ERROR_USAGE = 1,         // a call that its arguments or the object's state do not allow
  odb_ERROR_ABSENT = 2,        // the object asked for does not exist
  odb_ERROR_CANNOT_OPEN = 3,   // missing file, or not a database
  odb_ERROR_OLD_RELEASE = 4,   // the database must be upgraded first
  odb_ERROR_NEW_RELEASE = 5,   // the database was written by a newer release
  odb_ERROR_DAMAGED = 6,       // the database contradicts itself or cannot be read
  odb_ERROR_CANNOT_WRITE = 7,  // writing, flushing or renaming failed
  odb_ERROR_BAD_CAST = 8       // odb_dynamicCast to another type
};

class odb_Exception : public nex_Exception {
 public:
  explicit odb_Exception(const odb_String& message, int number = odb_ERROR_USAGE)
      : nex_Exception(message), number_(number) {}
  // The same message under further names.
  const odb_ErrorMessage& ErrMsg() const { return UserReport(); }
  const odb_ErrorMessage& AsString() const { return UserReport(); }
  // One of odb_ErrorNumber.
  int ErrorNo() const { return number_; }

 private:
  int number_;
};
