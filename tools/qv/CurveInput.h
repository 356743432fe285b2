// The curve tables the tool reads (spectral responses and MODTRAN tables),
// checked line by line before the library reads them, so that a line the
// library's readers would pass over or cut at (a header row, a word, a
// number cut short, a missing end line) is refused with its line number.
#pragma once

#include <string>

#include "qv/calibration/CalEnums.h"
#include "qv/core/Array.h"

namespace qvtool {

// Whether text holds a MODTRAN table: a line whose first word begins with
// FREQ (any case), as the library's reader finds the table.
bool HasModtranHeading(std::string const &text);

// An XY response: each line empty, a '#' comment, or two numbers (wavelength
// in microns, response) separated by commas, blanks or tabs; further fields
// are ignored, as the library's reader does. Lines hold at most 511 bytes.
bool CheckResponseText(std::string const &name, std::string const &text, std::string &error);

// A MODTRAN table: after the FREQ heading, rows of at least three numbers
// (frequency in cm^-1, transmission, path radiance) up to the "-9999." line,
// which must be there.
bool CheckModtranText(std::string const &name, std::string const &text, std::string &error);

// A sentence for a library status of a response or an atmosphere table that
// passed the line checks (what is left is the values: their order and range).
std::string ResponseStatusMessage(std::string const &name, qv::EResponseStatus status);
std::string AtmosphereStatusMessage(std::string const &name, qv::EResponseStatus status);

// Parses a whole field as a finite number, in the C form whatever the locale.
bool FiniteNumber(std::string const &field, double &value);

} // namespace qvtool
