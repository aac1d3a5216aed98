# The screenshots again on a real X server (Xvfb) when xvfb-run is
# installed: the window must paint there as it does offscreen. The pictures
# are kept in the build folder's "screenshots" folder. No session bus: the
# test needs none, and the bus library keeps memory the leak checker of the
# sanitizer build would report.
find_program(LOTWISE_XVFB_RUN xvfb-run)
if(LOTWISE_XVFB_RUN)
  add_test(NAME ui_main_window_screenshots_xvfb
           COMMAND ${LOTWISE_XVFB_RUN} -a -s "-screen 0 1280x1024x24"
                   $<TARGET_FILE:ui_main_window_tests> --gtest_filter=*Screenshot*)
  set_tests_properties(ui_main_window_screenshots_xvfb PROPERTIES
    TIMEOUT 300
    ENVIRONMENT
      "QT_QPA_PLATFORM=xcb;DBUS_SESSION_BUS_ADDRESS=disabled:;LOTWISE_SCREENSHOT_DIR=${CMAKE_BINARY_DIR}/screenshots")
endif()
