// Asio is compiled here, once for the program.
#include <boost/asio/impl/src.hpp>
