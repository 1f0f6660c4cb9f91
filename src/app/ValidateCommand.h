#pragma once
// `tamrik validate FILE.sl [--json]`: the project check on the command line, and the error
// count that `tamrik costs` and `tamrik summary` add on standard error.
#include <QStringList>

namespace lists {
class ListModel;
}
namespace persist {
struct ProjectFile;
}

namespace app {

// The arguments after "validate". Prints the findings on standard output and returns 0 when
// there are none, 2 when there are only remarks, 3 when there is an error, 1 when the file
// cannot be read or the arguments are wrong.
int validateCommand(const QStringList& args);

// Tells on standard error how many errors the check finds in the project
// ("tamrik: 3 virhettä, katso tamrik validate"); says nothing when there are none. A list the
// caller has already made of the project is checked as it is, not made again.
void reportCheckErrors(const persist::ProjectFile& project, const lists::ListModel* quantities = nullptr,
                       const lists::ListModel* requirements = nullptr);

} // namespace app
