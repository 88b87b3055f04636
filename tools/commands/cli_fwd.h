// Names of the command-line library, for headers that pass its commands on: whoever works with one
// includes the library, which takes seconds to compile.
#pragma once

namespace CLI {
class App;
class Option;
class Validator;
}  // namespace CLI
