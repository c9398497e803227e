# The tests of the library in process.
set(LUMO_IN_PROCESS_TESTS
  affinity_text_test.cpp
  arguments_test.cpp
  board_operations_test.cpp
  bus_operations_test.cpp
  consume_mv_test.cpp
  device_operations_test.cpp
  ecc_operations_test.cpp
  entry_point_test.cpp
  event_records_test.cpp
  gpu_operations_test.cpp
  library_start_test.cpp
  log_configuration_test.cpp
  lone_instance_test.cpp
  memory_operations_test.cpp
  mpc_batch_test.cpp
  mpc_operations_test.cpp
  no_memory_test.cpp
  part_operations_test.cpp
  pci_address_test.cpp
  pci_text_test.cpp
  pfm_test.cpp
  sablink_operations_test.cpp
  virtual_device_test.cpp
  vpu_operations_test.cpp
)
list(TRANSFORM LUMO_IN_PROCESS_TESTS PREPEND in_process/)
