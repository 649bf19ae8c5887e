// The vocabulary subsystem.
#pragma once
