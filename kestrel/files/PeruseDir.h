// Unit PeruseDir: the folder scanner and folder listings.
#pragma once

#include <kestrel/files/FolderListings.h>
#include <kestrel/files/FolderScanner.h>
#include <kestrel/files/PeruseDirRecords.h>
