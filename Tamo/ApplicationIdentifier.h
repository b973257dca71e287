#pragma once

/// What the system and tracing tools know the application by.
inline constexpr char applicationIdentifier[] = "tamo";
