// The fixed stretches of the ETL document.
#pragma once

inline constexpr char16_t etlLink[] = uR"(<?xml version="1.0" encoding="utf-16"?>
<KESTRUNE>
<GlobalParameters><ODBCConnections>
<odbc name='DataBaseConnection' link=')";

inline constexpr char16_t etlReader[] = uR"('/>
</ODBCConnections></GlobalParameters>
<ACTIONS>
<readODBC module='KestruneDefaultDBConnectors')";

inline constexpr char16_t etlEnd[] = uR"(
</readODBC>
<RunToFinishLine idx='1' x='125'/>
</ACTIONS>
<CONNECTORS><Connection idxSrc='0' idxDest='1'/></CONNECTORS>
</KESTRUNE>)";
