// Not yet run. Late-bound calls: a member by its name, with arguments of any type.
#![allow(dead_code)]
use windows::core::{Result, BSTR, GUID, HSTRING, PCWSTR};
use windows::Win32::System::Com::*;
use windows::Win32::System::Ole::DISPID_PROPERTYPUT;
use windows::Win32::System::Variant::*;

pub fn create(class: &str) -> Result<IDispatch> {
    unsafe {
        CoInitializeEx(None, COINIT_APARTMENTTHREADED).ok()?;
        let class = CLSIDFromProgID(&HSTRING::from(format!("KespCommObj.{class}")))?;
        CoCreateInstance(&class, None, CLSCTX_INPROC_SERVER)
    }
}

pub fn get(object: &IDispatch, name: &str) -> Result<VARIANT> {
    invoke(object, name, DISPATCH_PROPERTYGET, &mut [])
}

pub fn put(object: &IDispatch, name: &str, value: impl Into<VARIANT>) -> Result<()> {
    invoke(object, name, DISPATCH_PROPERTYPUT, &mut [value.into()]).map(|_| ())
}

// The arguments travel in reverse, so give the last one first.
pub fn call(object: &IDispatch, name: &str, arguments: &mut [VARIANT]) -> Result<VARIANT> {
    invoke(object, name, DISPATCH_METHOD, arguments)
}

// An argument that the library may change: VT_BYREF|VT_VARIANT.
pub fn by_reference(variable: &mut VARIANT) -> VARIANT {
    let mut argument = VARIANT::default();
    unsafe {
        let inner = &mut *argument.Anonymous.Anonymous;
        inner.vt = VARENUM(VT_BYREF.0 | VT_VARIANT.0);
        inner.Anonymous.pvarVal = variable;
    }
    argument
}

fn invoke(object: &IDispatch, name: &str, kind: DISPATCH_FLAGS, arguments: &mut [VARIANT]) -> Result<VARIANT> {
    let name = HSTRING::from(name);
    let (mut id, mut put_id) = (0, DISPID_PROPERTYPUT);
    let mut given = DISPPARAMS { rgvarg: arguments.as_mut_ptr(), cArgs: arguments.len() as u32, ..Default::default() };
    if kind == DISPATCH_PROPERTYPUT {
        (given.rgdispidNamedArgs, given.cNamedArgs) = (&mut put_id, 1);
    }
    let (mut result, mut exception) = (VARIANT::default(), EXCEPINFO::default());
    unsafe {
        object.GetIDsOfNames(&GUID::zeroed(), &PCWSTR(name.as_ptr()), 1, 0, &mut id)?;
        object
            .Invoke(id, &GUID::zeroed(), 0, kind, &given, Some(&mut result), Some(&mut exception), None)
            .inspect_err(|_| println!("description: {}", BSTR::clone(&exception.bstrDescription)))?;
    }
    Ok(result)
}
