#pragma once
// The command table of the command line: each command's name, usage and description, the help
// texts built from them, and the error lines that point the user to them.
#include <QString>
#include <QStringList>
#include <vector>

namespace app {

struct CommandHelp {
    const char* name;
    const char* arguments; // after "tamrik NAME"
    const char* line;      // one line for the listing
    const char* details;   // the rest of "tamrik help NAME": what it prints, its exit statuses
};

// Every command, in the order of the listing.
const std::vector<CommandHelp>& commandTable();
// The command of that name; nullptr for none.
const CommandHelp* findCommand(const QString& name);

// "tamrik --help": the desktop start, every command with one line, the options.
QString helpListing();
// "käyttö: tamrik NAME ARGUMENTS".
QString commandUsage(const CommandHelp& command);
// "tamrik help NAME": the usage and the description.
QString commandHelp(const CommandHelp& command);

// "tamrik help [COMMAND]": the listing or one command's help on standard output (exit 0), or
// an unknown command's error (exit 1).
int helpCommand(const QStringList& args);

// An argument that is neither a command, an option nor an existing file: says which and where
// the commands are listed; returns 1.
int unknownArgument(const QString& argument);
// Writes "tamrik: MESSAGE" on standard error and returns 1.
int fail(const QString& message);
// A command called the wrong way: its usage and where its help is; returns 1.
int usageError(const QString& command, const QString& problem = QString());
// Writes UTF-8 text, or bytes as they are, on standard output.
void printOut(const QString& text);
void printOut(const QByteArray& bytes);

} // namespace app
