@echo off
rem Starts the stand-in simulator and the control program in this folder.
cd /d "%~dp0"
start "Stand-in simulator" /min ..\simhost.exe
start "" ..\cockpit.exe
