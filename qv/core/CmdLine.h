/// @file
/// CCmdLine: a program's arguments parsed against declared positional
/// arguments, options (which take a value) and flags (which do not), and
/// ArgParse, which cuts one command-line text into tokens.
///
/// Declaring. AddArg, AddOpt and AddFlag keep the name and description
/// pointers as given (not copied): they must outlive the object, as literals
/// do. A name already borne by an argument, option or flag is refused; a null
/// name bears nothing (an option may have only a long or only a short name).
///
/// Parsing. Parse(argc, argv) skips argv[0] (the program). A token that begins
/// with "-" is an option or flag: behind one dash its body is compared with
/// the short and the long names, behind two with the long names only, without
/// regard to case and over the name's length; the name must then end the
/// body or be followed by "=" and a value. A flag takes no value: "-v=1" warns
/// and sets it all the same. Without "=", a flag's value is "true" and an
/// option takes the next token, whatever it is. Giving an option or flag again
/// warns and replaces its value. Every other token (and a "-" token that
/// matched nothing) fills the next positional argument; with all declared
/// ones filled the result is false ("Error: Too many arguments.") unless
/// allowExtra is set, which adds arguments named "Unnamed". Warnings and the
/// error go to standard output, or standard error with useStdErr. Both flags
/// are false after construction and there is no setter: a derived class sets
/// them. Parse keeps values from an earlier Parse that the new one does not
/// replace, except values from an earlier line, which Parse(line) forgets.
///
/// Values. The value of an argument, option or flag is null until set and
/// then points into the parsed text: into argv for Parse(argc, argv) (argv must
/// outlive the lookups), into the object's own copy of the line for
/// Parse(line), or at a shared "true" for a flag set without "=" (never write
/// through it). Lookups by name compare without regard to case, like parsing.
///
/// Failures: only surplus positional arguments make Parse false; a missing
/// argument shows as a null value. Nothing throws.
///
/// Threads: an object belongs to one thread at a time; ArgParse touches only
/// its arguments.
#pragma once

#include <cstdint>

#include "qv/core/Array.h"
#include "qv/core/Export.h"

namespace qv {

/// Cuts line in place into tokens separated by blanks, tabs, CR and LF. A
/// token that begins with a double quote runs to the next double quote, which
/// becomes its end; the quotes are not part of it. On entry argc is the
/// capacity of argv; on exit the number of tokens found, which may be larger:
/// only the first capacity tokens are stored.
QV_API void ArgParse(char16_t *line, char16_t **const argv, int &argc);

/// @copydoc CmdLine.h
class QV_API CCmdLine {
public:
    /// A declared option or flag.
    struct FLAG {
        char16_t const *shortName;   ///< name after one dash, or null
        char16_t const *longName;    ///< name after one or two dashes, or null
        char16_t const *description; ///< as given to AddOpt/AddFlag (not copied)
        char16_t *value;             ///< null until set; see the file comment
        bool takesValue; ///< true for an option, false for a flag
    };
    /// A positional argument, declared or added as "Unnamed".
    struct ARG {
        char16_t const *name;        ///< as given to AddArg (not copied)
        char16_t *value;             ///< null until set; see the file comment
        char16_t const *description; ///< as given to AddArg (not copied)
    };

    /// The number of tokens Parse(line) reads, the program's included.
    static constexpr int kLineTokens = 28;

    CCmdLine();
    /// Copies take the declarations and values; values that pointed into the
    /// other's copy of a line point into the copy's own.
    ///@{
    CCmdLine(CCmdLine const &other);
    CCmdLine &operator=(CCmdLine const &other);
    ~CCmdLine();
    ///@}

    /// Declare a positional argument, an option or a flag; the pointers are
    /// kept, not copied. False if a name is already borne (without regard to
    /// case) or the entry cannot be stored.
    ///@{
    bool AddArg(char16_t const *name, char16_t const *description);
    bool AddOpt(char16_t const *shortName, char16_t const *longName, char16_t const *description);
    bool AddFlag(char16_t const *shortName, char16_t const *longName, char16_t const *description);
    ///@}
    /// True if an argument, option or flag bears name (without regard to case);
    /// false for a null name.
    bool ArgExists(char16_t const *name);

    /// Parses argv[1..argc-1]; values point into argv. False only for surplus
    /// positional arguments without allowExtra.
    bool Parse(int argc, char16_t **const argv);
    /// Copies line, cuts it with ArgParse (kLineTokens tokens at most; the
    /// first is the program) and parses the tokens.
    bool Parse(char16_t const *line);

    uint32_t nArgs(); ///< positional arguments, declared and added
    /// The i-th positional value; null for i outside 0..nArgs()-1.
    char16_t *operator[](int i);
    /// The value of the positional argument, option or flag of that name.
    char16_t *operator[](char16_t const *name);

protected:
    TArray<FLAG> flags; ///< options and flags, in declaration order
    TArray<ARG> args;   ///< positional arguments, in order
    TSimpleArray<char16_t> line; ///< the copy of a line passed as one text
    bool allowExtra = false; ///< surplus positional tokens become "Unnamed" arguments
    bool useStdErr = false;  ///< warnings and errors to standard error, not output

private:
    bool AddFlagOrOpt(char16_t const *shortName, char16_t const *longName, char16_t const *description,
                      bool takesValue);
    /// The option or flag the body of a "-" token names, and where its name
    /// ends in the body; null if none.
    ///@{
    FLAG *MatchOption(char16_t const *body, bool longOnly, char16_t const *&rest);
    void SetOption(FLAG &flag, char16_t const *rest, int &i, int argc, char16_t **const argv);
    bool SetPositional(uint32_t &index, char16_t *value);
    void Message(char16_t const *format, ...);
    ///@}
    /// Values that point into the line copy at from (size units) move to the
    /// same place in to, or become null when to is null.
    void MoveLineValues(char16_t const *from, uint32_t size, char16_t *to);
};

} // namespace qv
