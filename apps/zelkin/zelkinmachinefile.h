#ifndef ZELKINMACHINEFILE_H
#define ZELKINMACHINEFILE_H

#include <QString>

class ZELGeoContainer;
class ZELKinAFPMachine;

/*!
    Loads a machine description file for the commands that need a machine.

    The library's loader reads a document that does not parse as an empty
    one and says nothing about a file it cannot read; here both become errors
    that say where the trouble is, before the loader sees the text.
*/
namespace ZELKinMachineFile {

//! Builds the machine described in the file at `path` in `container` and
//! returns it (owned by the container). Messages name the file as
//! ZELKinInputFile::GetName() does: "standard input" for /dev/stdin. Throws
//! ZELSysException with:
//! - "cannot read <path>: <reason>" for a file that cannot be read;
//! - "<path>:<line>:<column>: <parser message>" for text that is not
//!   well-formed XML;
//! - ZELKinMachineDescriptionCheck's messages for a description that the
//!   loader would build but no machine could have ("machine description
//!   line 29: <variable name='Y'>: max-speed 'abc' is not a number");
//! - "not an AFP machine description" when the root's "type" is not "AFP";
//! - whatever the loader throws for a description that breaks its rules.
//! The loader ends the process through Qt's fatal message handler on some
//! broken descriptions.
ZELKinAFPMachine* Load(ZELGeoContainer* container, const QString& path);

} // namespace ZELKinMachineFile

#endif // ZELKINMACHINEFILE_H
