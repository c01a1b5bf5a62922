# Run by an install: copies the headers of the package from SOURCE to TARGET/registry-rules. Those in `public` are for hosts;
# what they include besides goes to folders `detail`. The copies name each other by the whole path, so that a host needs one
# include folder, and no file of its own comes in between, whatever that is called.
cmake_minimum_required(VERSION 3.25)
set(public
    capi/registry_rules.h
    rules/RegistryRulesCtrl.h
    framework/include/afx.h framework/include/afxcmn.h framework/include/afxcoll.h framework/include/afxdialogex.h
    framework/include/afxmt.h framework/include/afxtempl.h framework/include/afxwin.h framework/include/atlbase.h
    siblings/coresv/LoggingService.h
    helpers/CursorHelper.h helpers/Encodings.h helpers/Fonts.h helpers/MeasureText.h helpers/NumberFormat.h
    helpers/ParseText.h helpers/ResourceString.h helpers/SystemText.h helpers/TextCompare.h
    registry/FileVersion.h registry/FsRedirection.h registry/HiveRedirection.h registry/OfflineEnvironment.h
    registry/ProcessPrivilege.h registry/ProductVersion.h registry/RegistryException.h registry/RegistryHelper.h
    registry/RegistryTransaction.h registry/SystemRoot.h registry/UiFont.h registry/WindowsVersion.h
    crypto/BCryptLib.h crypto/Encryptor.h crypto/EncryptorBase.h
    files/CoreSocketFile.h files/FileAcl.h files/FileFindEx.h files/Junctions.h files/LongPathFile.h files/PathHelper.h
    files/PathVariables.h files/ProfileCreator.h files/TextFiles.h files/Utf8TextFile.h files/VlpFile.h files/WriteRate.h
    profiles/BvUserProfileBase.h profiles/ConfigurationNames.h profiles/EngineContext.h profiles/PathTokens.h
    profiles/ProfilePathHelper.h profiles/ShellFolderPathHelper.h
    transports/EnvironmentValue.h transports/NamedPipeClient.h transports/UserNames.h transports/WinUsbDevice.h
    transports/WinUsbException.h transports/WinUsbSession.h
    offline/MachineNames.h offline/WinPeHelper.h
    carry/Apply.h carry/Capture.h carry/CarryReport.h carry/KeyAccess.h carry/RegistryTarget.h carry/RuleSelection.h
    carry/SelectionWalk.h carry/ValueBuffer.h)

# Where a header lies below `include`.
function(find_place header result)
    set(place toolkit/${header})
    if(header MATCHES "^(capi|rules|framework/include)/")
        string(REGEX REPLACE "^(capi|rules)/|include/" "" place ${header})
    elseif(header MATCHES "^framework/")
        string(REPLACE framework/ framework/detail/ place ${header})
    elseif(NOT header IN_LIST public)
        set(place toolkit/detail/${header})
    endif()
    set(${result} registry-rules/${place} PARENT_SCOPE)
endfunction()

file(REMOVE_RECURSE ${TARGET})
set(waiting ${public})
while(waiting)
    list(POP_FRONT waiting header)
    list(APPEND done ${header})
    file(READ ${SOURCE}/${header} text)
    cmake_path(GET header PARENT_PATH folder)
    string(REGEX MATCHALL "#include [\"<][^\">]+[\">]" includes "${text}")
    foreach(include IN LISTS includes)
        string(REGEX REPLACE ".*[\"<](.+)[\">]" "\\1" name ${include})
        foreach(found ${folder}/${name} ${name} framework/include/${name})
            if(EXISTS ${SOURCE}/${found})
                find_place(${found} place)
                string(REPLACE "${include}" "#include <${place}>" text "${text}")
                if(NOT found IN_LIST done AND NOT found IN_LIST waiting)
                    list(APPEND waiting ${found})
                endif()
                break()
            endif()
        endforeach()
    endforeach()
    find_place(${header} place)
    file(WRITE ${TARGET}/${place} "${text}")
endwhile()
