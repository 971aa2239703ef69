// JSON is compiled here, once for the program.
#include <boost/json/src.hpp>
