// The language subsystem: language codes, locale data and the catalogue.
#pragma once

#include <kestrel/language/LanguageCodes.h>
#include <kestrel/language/language_detailsU.h>
#include <kestrel/language/locale_utilities.h>
