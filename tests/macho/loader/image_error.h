#pragma once

#include <stdexcept>

namespace macho {

/// Why an image cannot be loaded.
class ImageError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

}  // namespace macho
