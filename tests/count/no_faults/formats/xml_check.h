// SPDX-License-Identifier: Zlib
#ifndef KELTRA_FORMATS_XML_CHECK_H
#define KELTRA_FORMATS_XML_CHECK_H

#include "foundation/fault.h"

class TiXmlDocument;
class TiXmlElement;
class TiXmlNode;

namespace keltra {

inline void checkGui(const TiXmlNode &, bool) {}
inline void checkEmitter(const TiXmlDocument &) {}
inline KTFAULT &tooManyObjects() { return newFault(KT_FAULT_NONE); }
inline unsigned int xmlLine(const TiXmlElement &) { return 0; }

}  // namespace keltra

#endif
