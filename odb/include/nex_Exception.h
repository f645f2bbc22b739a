// SPDX-License-Identifier: BSD-3-Clause
// What the library throws. Every failure is an odb_Exception, so that each of the names that
// programs catch (odb_BaseException, nex_Exception, odb_Exception, std::exception) gets it.
#pragma once

#include <odb_String.h>

#include <exception>

class odb_BaseException : public std::exception {
 public:
  explicit odb_BaseException(const odb_String& message) : message_(message) {}
  // The whole message, for people.
  const odb_String& UserReport() const { return message_; }
  const char* what() const noexcept override { return message_.CStr(); }

 private:
  odb_String message_;
};

class nex_Exception : public odb_BaseException {
 public:
  using odb_BaseException::odb_BaseException;
};

// The message of an odb_Exception as a C text.
class odb_ErrorMessage {
 public:
  explicit odb_ErrorMessage(const odb_String& message) : message_(message) {}
  const char* text() const { return message_.CStr(); }
  const char* CStr() const { return message_.CStr(); }

 private:
  odb_String message_;
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
  odb_ErrorMessage ErrMsg() const { return odb_ErrorMessage(UserReport()); }
  // One of odb_ErrorNumber.
  int ErrorNo() const { return number_; }

 private:
  int number_;
};
