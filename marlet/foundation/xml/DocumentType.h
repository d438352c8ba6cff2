#pragma once

namespace marlet::project
{

class XmlScanner;

/// Steps over a document type at its "<!DOCTYPE", and makes known to the scanner what entities it declares.
/// @throws XmlFault
void ScanDocumentType(XmlScanner &scanner, bool standsAlone);

} // namespace marlet::project
