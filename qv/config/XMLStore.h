/// @file
/// CXMLStore: settings in an XML file (qv/formats/tagged/XMLFile.h), loaded
/// and saved whole (see qv/config/FileStore.h for the file forms and the
/// atomic save).
///
/// The root element is "store"; each key is a nested element "entry" with an
/// attribute "name", and a leaf's value is the element's text:
/// @code{.xml}
///   <store>
///       <entry name="Camera">
///           <entry name="focus">12</entry>
///       </entry>
///   </store>
/// @endcode
/// Load reads every element below the first top-level "store" (an element
/// without a "name" attribute is taken as named ""); an element with a
/// non-empty text sets that value. So a key whose value is empty and that has
/// no children disappears in a round trip, and the reader drops the leading
/// white space of a value (see CXMLFile). A node that has both a value and
/// children keeps only its children in the file, as INI files do. Nesting of
/// any depth loads without recursion; paths deeper than the store's path
/// length are cut as every store path is.
///
/// Failures: Load gives false when the file cannot be opened, does not parse
/// or has no "store" element, and the memory is then empty; Save gives false
/// when a write fails. Threads: one thread at a time.
#pragma once

#include "qv/config/FileStore.h"

namespace qv {

/// @copydoc XMLStore.h
class QV_API CXMLStore : public CFileStore {
public:
    /// The file-name forms of CFileStore, kept visible beside the overrides.
    ///@{
    using CFileStore::Load;
    using CFileStore::Save;
    ///@}
    bool Load(IFile *file) override;
    bool Save(IFile *file) override;
};

} // namespace qv
