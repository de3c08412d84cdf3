@echo off
rem Makes this host's VSS service know the example provider, or forget it. Run it as an administrator, from the folder with
rem KorvelVssExample.dll, KorvelAccessLibrary.dll and Logger.dll, which has to be one that only administrators can write to:
rem the service runs what lies there as LocalSystem.
rem
rem   register-provider.cmd               registers the provider
rem   register-provider.cmd /unregister   undoes it
rem
rem It is written from the service's public documentation and has run on no real service yet. For a provider of your own,
rem change the names, and generate new identifiers: two providers must share none.
setlocal
set "dll=%~dp0KorvelVssExample.dll"
set "name=Korvel VSS example"
set "class={6F0C3D52-5B0E-4A5D-9D3B-2E5C1A7B8F41}"
set "provider={B1B34F0D-6A0C-4D5B-8C4E-55E0B7D2A9F3}"
set "version={2C5D0E84-93B7-4F0A-A3C1-7F6E1D9B4420}"
set "key=HKLM\SYSTEM\CurrentControlSet\Services\VSS\Providers\%provider%"

if /i "%~1"=="/unregister" goto unregister
if not "%~1"=="" (echo usage: %~nx0 [/unregister] & exit /b 64)

rem The class.
regsvr32 /s "%dll%" || goto failed

rem The service makes hardware providers outside of its own process: an application of COM+ holds this one, as LocalSystem.
rem What comes after the class runs on a real Windows alone; where there is no PowerShell, stop here.
powershell -NoProfile -ExecutionPolicy Bypass -Command ^
  "$ErrorActionPreference = 'Stop';" ^
  "$catalog = New-Object -ComObject COMAdmin.COMAdminCatalog;" ^
  "$applications = $catalog.GetCollection('Applications');" ^
  "$application = $applications.Add();" ^
  "$application.Value('Name') = $env:name;" ^
  "$application.Value('Activation') = 1;" ^
  "$application.Value('ApplicationAccessChecksEnabled') = 0;" ^
  "$application.Value('Identity') = 'NT AUTHORITY\LocalSystem';" ^
  "[void]$applications.SaveChanges();" ^
  "$catalog.InstallComponent($env:name, $env:dll, '', '')" || goto failed

rem The provider, for the service to find: type 3 is a hardware provider.
reg add "%key%" /ve /t REG_SZ /d "%name%" /f || goto failed
reg add "%key%" /v Type /t REG_DWORD /d 3 /f || goto failed
reg add "%key%" /v Version /t REG_SZ /d 1.0.0 /f || goto failed
reg add "%key%" /v VersionId /t REG_SZ /d "%version%" /f || goto failed
reg add "%key%\CLSID" /ve /t REG_SZ /d "%class%" /f || goto failed

rem Its event texts carry all there is to say; no message file is needed to read them.
reg add "HKLM\SYSTEM\CurrentControlSet\Services\EventLog\Application\KorvelVssExample" /v TypesSupported /t REG_DWORD /d 7 /f || goto failed

rem The service reads its list of providers when it starts.
net stop vss
vssadmin list providers
exit /b 0

:unregister
net stop vss
reg delete "%key%" /f
reg delete "HKLM\SYSTEM\CurrentControlSet\Services\EventLog\Application\KorvelVssExample" /f
powershell -NoProfile -ExecutionPolicy Bypass -Command ^
  "$catalog = New-Object -ComObject COMAdmin.COMAdminCatalog;" ^
  "$applications = $catalog.GetCollection('Applications'); $applications.Populate();" ^
  "for ($at = $applications.Count - 1; $at -ge 0; --$at) {" ^
  "  if ($applications.Item($at).Name -eq $env:name) { $applications.Remove($at) } };" ^
  "[void]$applications.SaveChanges()"
regsvr32 /s /u "%dll%"
exit /b 0

:failed
echo The provider is not registered, or not wholly; "%~nx0 /unregister" takes back what was done. 1>&2
exit /b 1
