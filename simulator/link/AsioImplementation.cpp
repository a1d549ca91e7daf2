// Asio's own code, compiled once instead of into each file that uses it.
#include <asio/impl/src.hpp>
