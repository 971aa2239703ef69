// Beast is compiled here, once for the program.
#include <boost/beast/src.hpp>
