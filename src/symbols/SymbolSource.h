#pragma once

#include <cstddef>
#include <string_view>

class FileNames;

/// The symbols of one mapped file, or of the kernel, as a program that links the converter provides them in
/// place of nm's list: numbered, ascending by address, not overlapping. Only those that a recording uses are
/// asked for.
class SymbolSource {
 public:
  static constexpr std::size_t kNone = ~std::size_t{0};

  struct Symbol {
    unsigned long long start = 0;
    unsigned long long size = 0;  ///< the symbol covers [start, start + size], at most 1 MiB
    std::string_view name = {};   ///< valid until the next call
    FileNames* file = nullptr;    ///< source file, or null
    unsigned int line = 0;
  };

  virtual ~SymbolSource() = default;

  /// Returns the number of the symbol that covers the address, or kNone.
  [[nodiscard]] virtual std::size_t find(unsigned long long address) const = 0;
  /// Returns a symbol that find() has returned.
  virtual Symbol at(std::size_t number) = 0;

  /// Return the starts of the first and of the last symbol: of the kernel, these are its bounds.
  [[nodiscard]] virtual unsigned long long lowest() const = 0;
  [[nodiscard]] virtual unsigned long long highest() const = 0;
};
