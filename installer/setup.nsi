; The setup program of the Kesp Communication Object Library; tools/make-installer calls makensis with
;   VERSION  three numbers with dots
;   PAYLOAD  the file written by payload.py: what is installed, and its removal
;   OUTPUT   the program to write
;   STUB     x86-unicode, which runs on every Windows, or amd64-unicode for a Windows without 32-bit programs
;   COMMIT   which commit of the sources it was made from
;   COMPRESSOR  lzma for the smallest program, zlib for one that is made in a moment
Target ${STUB}
SetCompressor /SOLID ${COMPRESSOR}

!include LogicLib.nsh
!include MUI2.nsh
!include Sections.nsh
!include WinVer.nsh
!include x64.nsh

!define PRODUCT "Kesp Communication Object Library"
!define PUBLISHER "Kesp"
!define FOLDER "Kesp\KespCommObj"
; The application that the classes are of with the surrogate process; the library knows it (server/registration.cpp).
!define APPLICATION_KEY "Software\Classes\AppID\{b11edd6c-6e7c-4198-acee-833c0be5cd41}"
!define UNINSTALL_KEY "Software\Microsoft\Windows\CurrentVersion\Uninstall\KespCommObj"

; Exit codes besides the stub's own (0 done, 1 cancelled by the user): Windows' numbers where it has one.
!define EXIT_FAILED 2
!define EXIT_FILES_REMAIN 32
!define EXIT_NEEDS_ADMINISTRATOR 740
!define EXIT_OLD_WINDOWS 1150
!define EXIT_NEWER_VERSION 1638
!define EXIT_NEEDS_RESTART 3010

Name "${PRODUCT}"
OutFile "${OUTPUT}"
BrandingText "${PUBLISHER} ${VERSION}"
; An administrator's rights are asked for where they are needed: not for an installation for one user.
RequestExecutionLevel user
; A file that cannot be written ends the installation: nobody is asked to ignore it.
AllowSkipFiles off
; Two builds give the same program, so the files' times are not in it.
SetDateSave off
ShowInstDetails show
ShowUninstDetails show
ManifestSupportedOS all
ManifestDPIAware true

!include "${PAYLOAD}"
!include version.nsh
!include windows.nsh
!include rights.nsh
!include scope.nsh
!include log.nsh
!include place.nsh
!include in_use.nsh
!include entries.nsh
!include registration.nsh
!include other_installations.nsh
!include menu.nsh
!include practice.nsh
!include removal.nsh
!include earlier_version.nsh
!include install.nsh
!include surrogate.nsh
!include components.nsh
!include wizard.nsh
!include uninstall.nsh
