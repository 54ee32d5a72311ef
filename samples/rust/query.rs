// Not yet run. A query through the communication object, with its outcome printed.
use crate::kesp::{by_reference, call, get};
use windows::core::{Result, BSTR};
use windows::Win32::System::Com::IDispatch;
use windows::Win32::System::Variant::VARIANT;

pub fn argument(position: usize, otherwise: &str) -> String {
    std::env::args().nth(position).unwrap_or(otherwise.into())
}

// Whether there was a reply.
pub fn query(comm: &IDispatch, cmd: &str) -> Result<bool> {
    let mut result = VARIANT::default();
    // In reverse: cmd, and before it result.
    let succeeded = call(comm, "Query", &mut [cmd.into(), by_reference(&mut result)])?;
    let succeeded = bool::try_from(&succeeded)?;
    println!("command:     {cmd}");
    if succeeded {
        println!("reply:       {}", BSTR::try_from(&result)?);
    } else {
        println!("source:      {}", BSTR::try_from(&get(comm, "CommErrorSource")?)?);
        println!("description: {}", BSTR::try_from(&get(comm, "CommErrorDescr")?)?);
    }
    println!("status:      {}", i32::try_from(&get(comm, "CommError")?)?);
    Ok(succeeded)
}
