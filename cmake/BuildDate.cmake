# Writes the header OUT with today's date (that of SOURCE_DATE_EPOCH where it is set), unless it says so already.
string(TIMESTAMP today "%Y-%m-%d")
file(CONFIGURE OUTPUT ${OUT} CONTENT "#define DRX9_BUILD_DATE \"${today}\"\n")
